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
/// Sections and keys are byte strings, sections go by index. A null text acts as an empty one,
/// except where it is said otherwise. Saving has the care of store_parameters(): the file that is
/// replaced stays whole until the new one is on the disk.
///
/// Unlike CSectionedFile, a file that is loaded into an empty object keeps the first section and
/// the first key of a name; values with a "+" show what the store makes of them.
///
/// Threads: one at a time, with the whole runtime.
class TrvIniFile {
public:
    TrvIniFile() = default;
    virtual ~TrvIniFile();

    TrvIniFile(const TrvIniFile&) = delete;
    TrvIniFile& operator=(const TrvIniFile&) = delete;

    /// Loads a file, into what is already there if anything is, and takes the version from the key
    /// "version" of the section "header".
    ///
    /// @return 0; -1 where there is neither a file nor anything loaded before, and where the file
    ///         cannot be opened, which has been reported through the fatal channel: what was there
    ///         stays
    virtual int load(const char* fileName);

    /// Saves the entries that were set, and those that were loaded from this very file.
    ///
    /// @return 0; otherwise as store_parameters(), and -1 where nothing was set or loaded: no file
    ///         is touched then
    virtual int save(const char* fileName);

    /// The same for a caller that has read or checked something since it holds the file.
    virtual int save(const char* fileName, trv::file_replacement& held);

    /// Drops everything but the version.
    virtual void close();

    /// The format version: 0 until one is set or loaded.
    virtual int getVersion() const;
    virtual void setVersion(int version);

    /// The index of the first section of exactly this name, or -1.
    int findSection(const char* name) const;

    /// Adds a section, also where there is one of that name.
    ///
    /// @return its index; -1 for a null name or one of 100 characters and more, for the 32768th
    ///         section and when storage runs out
    int addSection(const char* name);

    /// Sets a key: in the first entry of exactly this name, else in a new one. Line ends in the
    /// value are not looked at.
    ///
    /// @return 0; -1 for a bad section, for the 32768th entry and when storage runs out
    int setValue(std::int16_t section, const char* key, const char* value);

    /// Sets a key to the text that floatText() gives.
    int setFloatValue(std::int16_t section, const char* key, float value);

    /// A number with six decimals, of which the first 19 characters are kept.
    static std::string floatText(float value);

    /// Sets a key of the section "header", which is added if there is none.
    int setHeaderValue(const char* key, const char* value);

    /// The value of a key; the section counts case, the key does not.
    ///
    /// @return the value, good until the next change or the next lookup in any store; none (null)
    ///         where section or key are missing
    const char* getValue(const char* section, const char* key) const;
    const char* getHeaderValue(const char* key) const;

    /// How many entries a section has, or -1 where there is none of that name.
    int lineCount(const char* section) const;

    /// An entry by its place: "" for a deleted one, none (null) for a bad index. Good until the
    /// next change.
    const char* getLine(std::int16_t section, int line) const;

    /// Calls back for each entry of a directory whose name ends in a suffix, directories included,
    /// in byte order, until a call answers other than 0.
    ///
    /// @param directory  null for the work zone's ("TRVZONE"), and where that is not known for "."
    /// @param suffix     null acts as empty; may be the result of an earlier lookup
    /// @param callback   gets the name behind "<directory>/", good during the call
    /// @param context    handed on as it is
    /// @return what the last call answered; 0 without one; -1 without a callback
    int forEachZoneFile(const char* directory, const char* suffix,
                        int (*callback)(const char* fileName, void* context), void* context);

private:
    trv::message_store* document_ = nullptr;
    std::int32_t version_ = 0;
};
