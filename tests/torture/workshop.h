#pragma once

/// @file
/// The environment of a tested operation: a directory of files, an installation, and a fault that
/// occurs while the operation runs.

#include <trvfiles/environment/variables_internal.h>

#include <filesystem>
#include <map>
#include <new>
#include <string>
#include <utility>

namespace trv::testing {

/// A fault of this process between arm() and disarm().
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

/// The exception of a handler of the host.
struct HandlerFailure {};

/// Used instead of a status: the operation threw std::bad_alloc, or a handler threw.
inline constexpr int threwBadAlloc = 1000;
inline constexpr int handlerThrew = 1001;

/// The bytes of all files in a directory and its subdirectories, by relative name. Directories have
/// no bytes.
using Files = std::map<std::string, std::string>;
Files filesOf(const std::filesystem::path& directory);

/// A directory with one file of each kind. It is the current directory. It contains an
/// installation, which the variables of the process name. The environment is loaded into a store of
/// its own.
///
/// It changes the whole process, so use it in a child process.
class Workshop {
public:
    /// Removes all files of the directory and creates them again.
    Workshop(std::filesystem::path directory, Fault& fault);
    ~Workshop();
    Workshop(const Workshop&) = delete;
    Workshop& operator=(const Workshop&) = delete;

    /// The status of a call during which the fault occurs.
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

    /// Creates the contents of the files for all workshops. Otherwise the first one creates them.
    static void makeFiles();

    /// Resets the process to the state in which its environment is not loaded.
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
