#pragma once

/// @file
/// Settings files over a message store.

#include <cstdint>
#include <string>

namespace trv {
class file_replacement;
struct message_store;
}  // namespace trv

/// Builds, loads and saves a sectioned settings file in a store of its own.
///
/// Sections and keys are byte strings; a section is identified by its index. nullptr acts as an
/// empty text unless it is said otherwise. Saving has the guarantees of store_parameters(): the
/// file that is replaced stays whole until the new one is on the disk.
///
/// Unlike CSectionedFile, a file that is loaded into an empty object keeps the first section and
/// the first key of a name, and of a value with a "+" what the store keeps.
///
/// Threads: one at a time, with the whole runtime.
class TrvIniFile {
public:
    TrvIniFile() = default;
    virtual ~TrvIniFile();

    TrvIniFile(const TrvIniFile&) = delete;
    TrvIniFile& operator=(const TrvIniFile&) = delete;

    /// Loads a file, in addition to what is loaded already, and takes the version from the key
    /// "version" of the section "header".
    ///
    /// @return 0; -1 if there is neither a file nor anything loaded before, and if the file cannot
    ///         be opened, which is reported through the fatal channel: what was loaded before stays
    virtual int load(const char* fileName);

    /// Saves the entries that were set, and those that were loaded from this very file.
    ///
    /// @return 0; otherwise as store_parameters(), and -1 if nothing was set or loaded: no file is
    ///         touched then
    virtual int save(const char* fileName);

    /// The same for a caller that has read or checked something since it holds the file.
    virtual int save(const char* fileName, trv::file_replacement& held);

    /// What save() writes to a file from which nothing was loaded: the entries that were set.
    std::string text() const;

    /// Removes everything but the version.
    virtual void close();

    /// The format version: 0 until one is set or loaded.
    virtual int getVersion() const;
    virtual void setVersion(int version);

    /// The index of the first section of exactly this name, or -1.
    int findSection(const char* name) const;

    /// Adds a section, also if there is one of that name.
    ///
    /// @return its index; -1 for nullptr, for a name of 100 characters and more, for the 32768th
    ///         section and when storage runs out
    int addSection(const char* name);

    /// Sets a key: in the first entry of exactly this name, else in a new one. Line ends in the
    /// value are kept, so each of them begins a new line of the file.
    ///
    /// @return 0; -1 for a bad section, for the 32768th entry and when storage runs out
    int setValue(std::int16_t section, const char* key, const char* value);

    /// Sets a key to the text that floatText() gives.
    int setFloatValue(std::int16_t section, const char* key, float value);

    /// A number with six decimals, of which the first 19 characters are kept.
    static std::string floatText(float value);

    /// Sets a key of the section "header", which is added if there is none.
    int setHeaderValue(const char* key, const char* value);

    /// The value of a key. Case counts for the section and is ignored for the key.
    ///
    /// @return the value, valid until the next change or the next lookup in any store; nullptr if
    ///         the section or the key is missing
    const char* getValue(const char* section, const char* key) const;
    const char* getHeaderValue(const char* key) const;

    /// The number of entries of a section; -1 if there is none of that name.
    int lineCount(const char* section) const;

    /// An entry by its index: "" for a deleted one, nullptr for a bad index. Valid until the next
    /// change.
    const char* getLine(std::int16_t section, int line) const;

    /// Calls back for each entry of a directory whose name ends in a suffix, directories included,
    /// in byte order, until a call returns something other than 0.
    ///
    /// @param directory  nullptr for the work zone's ("TRVZONE"), or "." if that is not known
    /// @param suffix     nullptr acts as empty; may be the result of an earlier lookup
    /// @param callback   gets the name after "<directory>/", valid during the call
    /// @param context    passed to the callback
    /// @return what the last call has returned; 0 without a call; -1 without a callback
    int forEachZoneFile(const char* directory, const char* suffix,
                        int (*callback)(const char* fileName, void* context), void* context);

private:
    trv::message_store* document_ = nullptr;
    std::int32_t version_ = 0;
};
