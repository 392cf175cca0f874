#pragma once

/// @file
/// What an operation under torture works on: a directory of files, an installation, and a fault
/// that strikes while the operation runs.

#include <trvfiles/environment/variables_internal.h>

#include <filesystem>
#include <map>
#include <new>
#include <string>
#include <utility>

namespace trv::testing {

/// Something that goes wrong in this process between arm() and disarm().
class Fault {
public:
    Fault() = default;
    virtual ~Fault() = default;
    Fault(const Fault&) = delete;
    Fault& operator=(const Fault&) = delete;

    virtual void arm() = 0;
    virtual void disarm() = 0;
};

class NoFault : public Fault {
public:
    void arm() override {}
    void disarm() override {}
};

/// What a handler of the host throws.
struct HandlerFailure {};

/// In place of a status: the operation threw std::bad_alloc, or a handler threw.
inline constexpr int threwBadAlloc = 1000;
inline constexpr int handlerThrew = 1001;

/// All files of a directory and below it: by relative name, their bytes. Directories have none.
using Files = std::map<std::string, std::string>;
Files filesOf(const std::filesystem::path& directory);

/// A directory with one file of each kind, the process's current one, and in it an installation to
/// which the process's variables point. The environment is loaded: it has a store of its own.
///
/// It changes the whole process: use it in a child process.
class Workshop {
public:
    /// Empties the directory and fills it anew.
    Workshop(std::filesystem::path directory, Fault& fault);
    ~Workshop();
    Workshop(const Workshop&) = delete;
    Workshop& operator=(const Workshop&) = delete;

    /// The status of a call during which the fault strikes.
    template <class Call>
    int under(Call call) {
        const Armed armed(fault_);
        try {
            return static_cast<int>(call());
        } catch (const std::bad_alloc&) {
            return threwBadAlloc;
        } catch (const HandlerFailure&) {
            return handlerThrew;
        }
    }

    std::filesystem::path path(const std::string& name) const { return directory_ / name; }
    std::string text(const std::string& name) const { return path(name).string(); }
    std::wstring wide(const std::string& name) const { return path(name).wstring(); }

    /// Makes what every workshop finds in its files; otherwise the first one does.
    static void makeFiles();

    /// Puts the process back to where its environment is not loaded yet.
    static void forgetEnvironment();

private:
    class Armed {
    public:
        explicit Armed(Fault& fault) : fault_(fault) { fault_.arm(); }
        ~Armed() { fault_.disarm(); }
        Armed(const Armed&) = delete;
        Armed& operator=(const Armed&) = delete;

    private:
        Fault& fault_;
    };

    void writeFiles() const;
    void setVariables() const;

    std::filesystem::path directory_;
    Fault& fault_;
    process_stores earlier_;
};

}  // namespace trv::testing
