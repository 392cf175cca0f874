#pragma once

/// @file
/// Runs the built command in its own process.

#include <QCoreApplication>
#include <QProcess>
#include <QTextCodec>

#include <filesystem>
#include <string>

namespace trv::testing {

class Process {
public:
    /// @param directory  the current directory of the command
    explicit Process(const std::filesystem::path& directory) {
        needApplication();
        process_.setWorkingDirectory(QString::fromStdString(directory.generic_string()));
    }

    /// @param value  nullptr unsets the variable
    void setVariable(const char* name, const char* value) {
        QProcessEnvironment environment = process_.processEnvironment();
        if (environment.isEmpty()) environment = QProcessEnvironment::systemEnvironment();
        environment.remove(QString::fromLatin1(name));
        if (value != nullptr) {
            environment.insert(QString::fromLatin1(name), QString::fromLatin1(value));
        }
        process_.setProcessEnvironment(environment);
    }

    /// The exit status, or -1 if the process did not start or did not end by itself.
    int start(const QString& program, const QStringList& arguments) {
        process_.start(program, arguments);
        if (!process_.waitForFinished() || process_.exitStatus() != QProcess::NormalExit) return -1;
        out_ = process_.readAllStandardOutput().toStdString();
        err_ = process_.readAllStandardError().toStdString();
        return process_.exitCode();
    }

    int run(const QStringList& arguments) { return start(QStringLiteral(TRV_COMMAND), arguments); }

    /// Runs the command with its streams as a shell redirects them.
    int runRedirected(const char* redirection, const QStringList& arguments) {
        const QString call = QStringLiteral("\"$0\" \"$@\" ") + QString::fromLatin1(redirection);
        return start(
            QStringLiteral("/bin/sh"),
            QStringList({QStringLiteral("-c"), call, QStringLiteral(TRV_COMMAND)}) + arguments);
    }

    /// The unchanged output.
    const std::string& out() const { return out_; }
    const std::string& err() const { return err_; }

private:
    // One application for the program: processes need its services, and they get names in UTF-8.
    static void needApplication() {
        static int argumentCount = 1;
        static char name[] = "cli_tests";
        static char* arguments[] = {name, nullptr};
        static const QCoreApplication application(argumentCount, arguments);
        QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    }

    QProcess process_;
    std::string out_;
    std::string err_;
};

}  // namespace trv::testing
