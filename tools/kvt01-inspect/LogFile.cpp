#include "LogFile.h"

#include "Damage.h"
#include "Output.h"

namespace {

constexpr char Title[] = "Corvane Software Log File";
constexpr WORD FirstVersion = 6;
constexpr WORD LastVersion = 7;
constexpr WORD EntryVersion = 2;
constexpr WORD LastDateVersion = 3;

// Reads a log piece by piece; a piece that is not as expected raises Damage that says where and what.
class LogReader {
public:
    explicit LogReader(Source& source) : m_source(source) {}

    void Entry(uint64 number) { m_place = ", entry " + std::to_string(number); }

    template <class Value>
    void Expect(const char* what, Value& value)
    {
        Read(what, [&](CRewindArchive& archive) { archive >> value; });
    }
    void ExpectWord(const char* what, WORD first, WORD last)
    {
        WORD word = 0;
        const uint64 position = m_source.Position();
        Expect(what, word);
        if (word < first || word > last)
            Break(position, what, "it is " + std::to_string(word));
    }
    void ExpectTitle()
    {
        CString title;
        Expect("the title of a log file", title);
        if (title != Title)
            Break(0, "the title of a log file", "something else stands there");
    }
    void ExpectDate(DateTime& date)
    {
        ExpectWord("the time, a record of version 1 to 3", 1, LastDateVersion);
        m_source.Archive().DoRewindWORD();
        Read("the time", [&](CRewindArchive& archive) { date.Serialize(archive); });
    }

private:
    template <class ReadValue>
    void Read(const char* what, ReadValue readValue)
    {
        const uint64 position = m_source.Position();
        try {
            readValue(m_source.Archive());
        } catch (const CArchiveException& error) {
            const bool isEnd = error.m_cause == CArchiveException::endOfFile;
            Break(position, what, isEnd ? "the file ends" : error.what());
        } catch (const std::length_error& error) {
            Break(position, what, error.what());
        }
    }
    [[noreturn]] void Break(uint64 position, const char* what, const std::string& found) const
    {
        throw Damage("byte " + std::to_string(position) + m_place + ": expected " + what + ", but " + found);
    }

    Source& m_source;
    std::string m_place;
};

void PrintEntry(LogReader& reader)
{
    DateTime time;
    CString marker;
    CString text;
    reader.ExpectWord("an entry, of version 2", EntryVersion, EntryVersion);
    reader.ExpectDate(time);
    reader.Expect("the marker", marker);
    reader.Expect("the text", text);
    Output::Line(Output::Date(time) + '\t' + Output::Text(marker.View()) + '\t' + Output::Text(text.View()));
}

} // namespace

void PrintLog(Source& source)
{
    LogReader reader(source);
    CString application;
    uint64 count = 0;
    reader.ExpectTitle();
    reader.ExpectWord("version 6 or 7", FirstVersion, LastVersion);
    reader.Expect("the application's name", application);
    reader.Expect("the number of entries", count);
    Output::Line("Log of " + Output::Text(application.View()) + ", entries: " + std::to_string(count));
    for (uint64 number = 1; number <= count; ++number) {
        reader.Entry(number);
        PrintEntry(reader);
    }
    if (source.BytesLeft() > 0)
        throw Damage("byte " + std::to_string(source.Position()) +
                     ": bytes left over: " + std::to_string(source.BytesLeft()));
}
