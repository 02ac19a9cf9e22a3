// Stored records of any bytes: each type loads them or raises one of the exceptions of archives, and what was
// loaded stays the same when it is stored and loaded again.
#include <map>
#include <stdexcept>

#include "Crypto.h"
#include "DateEntry.h"
#include "ExternalAppRun.h"
#include "MRUApplications.h"
#include "MRUArray.h"
#include "MRUArrayByTime.h"
#include "NextIDMgr.h"
#include "SerializeData.h"
#include "VersionNumber.h"
#include "fuzz/Difference.h"
#include "fuzz/Targets.h"
#include "persist/LogRecord.h"
#include "tests/support/ArchiveBytes.h"

namespace {

using NoCase = StringUtils::NoCase;

struct EncryptedText {
    CString text;
    void Serialize(CArchive& archive) { Crypto::Serialize(archive, text); }
};
struct Log {
    LogEntries entries;
    void Serialize(CArchive& archive)
    {
        if (archive.IsStoring())
            LogRecord::Store(archive, "App", entries);
        else
            LogRecord::Load(archive, entries);
    }
};

template <class Value>
void Transfer(CArchive& archive, Value& value, bool legacy)
{
    if constexpr (requires { value.Serialize(archive, legacy); })
        value.Serialize(archive, legacy);
    else if constexpr (requires { value.Serialize(archive); })
        value.Serialize(archive);
    else if constexpr (requires { SerializeData::Serialize(archive, value, legacy); })
        SerializeData::Serialize(archive, value, legacy);
    else
        SerializeData::Serialize(archive, value);
}

template <class Value>
bool IsLoaded(const std::string& bytes, Value& value, bool legacy)
{
    try {
        LoadFrom(bytes, [&](CArchive& archive) { Transfer(archive, value, legacy); });
        return true;
    } catch (const CArchiveException&) {
    } catch (const CFileException&) {
    } catch (const std::length_error&) {
    }
    return false;
}

template <class Value>
void TryAs(const std::string& bytes)
{
    for (const bool legacy : {false, true}) {
        Value value{}, again{};
        if (!IsLoaded(bytes, value, legacy))
            continue;
        const auto store = [](Value& stored) {
            return StoredBy([&](CArchive& archive) { Transfer(archive, stored, false); });
        };
        const std::string stored = store(value);
        Expect("Serialize, whether it reads what it stored", IsLoaded(stored, again, false), true, bytes,
               legacy);
        Expect("Serialize", store(again), stored, bytes, legacy);
    }
}

template <class... Values>
void TryAsEach(const std::string& bytes)
{
    (TryAs<Values>(bytes), ...);
}

} // namespace

void Targets::Records(Choices& choices)
{
    const std::string bytes = choices.Rest();
    TryAsEach<std::vector<bool>, std::vector<int>, std::vector<uint64>, std::vector<double>,
              std::vector<CString>, std::set<CString, NoCase>, std::set<std::string>, std::map<int, bool>,
              std::map<int, double>, std::map<int, DateTime>, std::map<int, CString>,
              std::map<int, std::vector<int>>, std::map<CString, int, NoCase>, std::map<std::string, double>,
              std::map<CString, CString>, std::map<CString, std::vector<CString>>,
              std::map<UINT, std::map<CString, CRect>>>(bytes);
    TryAsEach<std::string, EncryptedText, TextArray, DateTime, DateEntry, MRUArray, MRUArrayByTime,
              MRUApplications, NextIDMgr, VersionNumber, ExternalAppRun, Log>(bytes);
}
