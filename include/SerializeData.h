// SerializeData: containers in an archive. Every operation is symmetrical: it stores when the archive is
// storing and loads when it is loading.
//
// A container is stored as a 16-bit container version (1), the number of elements (8 bytes), and the elements
// in iteration order. With bLegacy a load expects the older layout: no version word and a count of 4 bytes,
// in nested containers too. Storing ignores bLegacy, and loading ignores the value of the version word. The
// bytes of the elements are those of CArchive's operators; a CRect is left, top, right, bottom, and a
// TextArray the record that it makes itself.
//
// Loading replaces what the container held. A vector of strings that already has as many elements as are
// loaded is overwritten in place, which keeps references to its elements good. Of pairs with the same key the
// last one counts.
//
// CArchiveException is raised at the end of the data and for the wrong direction; the container then keeps
// what was loaded so far. A count that the container cannot hold raises std::length_error before anything is
// loaded. Memory grows with the data that are there, never with a count that is only claimed.
#pragma once

#include "CArchive.h"
#include "CRect.h"
#include "CString.h"
#include "DateTime.h"
#include "Kvt01Api.h"
#include "StringUtils.h"
#include "TextArray.h"

#include <functional>
#include <map>
#include <set>
#include <string>
#include <unordered_set>
#include <vector>

// What the templates below are there for.
template <class Key>
concept TextKey = OneOf<Key, CString, std::string>;
template <class Order, class Key> // the orders of containers with text keys
concept TextOrder = OneOf<Order, std::less<Key>, StringUtils::NoCase>;
template <class Number>
concept Uint64Value = OneOf<Number, uint64> || LongUint64<Number>;
template <class Value>
concept IntMapValue =
    OneOf<Value, bool, int, double, DateTime, std::string, CString, TextArray, std::vector<int>> ||
    Uint64Value<Value>;
template <class Value>
concept TextMapValue =
    OneOf<Value, bool, int, UINT, double, DateTime, CString, std::string, std::vector<CString>>;

class KVT01_API SerializeData {
public:
    // ---- vectors ----------------------------------------------------------------------------------------
    static void Serialize(CArchive& archive, std::vector<bool>& list, bool bLegacy = false);
    static void Serialize(CArchive& archive, std::vector<int>& list, bool bLegacy = false);
    template <Uint64Value Number>
    static void Serialize(CArchive& archive, std::vector<Number>& list, bool bLegacy = false);
    static void Serialize(CArchive& archive, std::vector<double>& list, bool bLegacy = false);
    static void Serialize(CArchive& archive, std::vector<CString>& list, bool bLegacy = false);
    static void Serialize(CArchive& archive, std::vector<std::string>& list, bool bLegacy = false);

    // ---- sets of texts ----------------------------------------------------------------------------------
    template <TextKey Text, TextOrder<Text> Order>
    static void Serialize(CArchive& archive, std::set<Text, Order>& set, bool bLegacy = false);
    static void Serialize(CArchive& archive, std::unordered_set<std::string>& set, bool bLegacy = false);

    // ---- maps -------------------------------------------------------------------------------------------
    template <IntMapValue Value>
    static void Serialize(CArchive& archive, std::map<int, Value>& map, bool bLegacy = false);
    template <Uint64Value Key>
    static void Serialize(CArchive& archive, std::map<Key, TextArray>& map, bool bLegacy = false);
    template <TextKey Key, TextMapValue Value, TextOrder<Key> Order>
    static void Serialize(CArchive& archive, std::map<Key, Value, Order>& map, bool bLegacy = false);
    template <TextOrder<CString> Order>
    static void Serialize(CArchive& archive, std::map<CString, CRect, Order>& map, bool bLegacy = false);
    template <TextOrder<CString> Order>
    static void Serialize(CArchive& archive, std::map<UINT, std::map<CString, CRect, Order>>& map,
                          bool bLegacy = false);
    // Stored with container version 2, all texts plain. In a record of version 1 the texts of the keys in
    // `protectedKeys` are encrypted-string records; in the legacy layout, which has no version, all are
    // plain.
    static void Serialize(CArchive& archive, std::map<int, CString>& map,
                          const std::unordered_set<int>& protectedKeys, bool bLegacy = false);

    // ---- texts that may be encrypted: stored exactly as Serialize stores them, in clear, but loaded as --
    // encrypted-string records. What these store they cannot load; older data depend on it.
    static void SerializeEncrypted(CArchive& archive, std::vector<CString>& list, bool bLegacy = false);
    template <TextOrder<CString> Order>
    static void SerializeEncrypted(CArchive& archive, std::map<CString, int, Order>& map,
                                   bool bLegacy = false);

    // ---- single values ----------------------------------------------------------------------------------
    static void Serialize(CArchive& archive, bool& value);
    static void Serialize(CArchive& archive, std::string& text);

    // ---- the number of elements of a container ----------------------------------------------------------
    // Storing: writes `count` as 8 bytes and returns it. Loading: returns the count read (4 bytes if
    // bLegacy).
    static uint64 SerializeLoopCounter(CArchive& archive, uint64 count, bool bLegacy = false);
    // Loads a container's version word and count; the legacy layout has no version, which then is 0.
    static uint64 DeserializeLoopCounter(CArchive& archive, bool bLegacy, WORD& version);

protected:
    // In the wrong direction the cause is genericException.
    static void Serializestring(CArchive& archive, const std::string& text); // store only
    static void Deserialize(CArchive& archive, std::string& text);           // load only
};
