#include <cli/dispatch.h>
#include <trvfiles/support/platform.h>

#include <QCoreApplication>
#include <QTextCodec>

#include <cerrno>
#include <clocale>
#include <cstdio>
#include <exception>
#include <iostream>

namespace {

using trv::cli::ExitStatus;

bool isClosed(std::FILE* stream) {
    errno = 0;
    return std::ftell(stream) == -1 && errno == EBADF;
}

// Arguments, file names and texts are UTF-8 where narrow text is, also in a locale that has no
// such characters; messages are the same everywhere.
void fixTexts() {
    static_cast<void>(std::setlocale(LC_ALL, "C"));
    if (trv::platform::narrow_text_is_utf8()) {
        QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    }
}

ExitStatus runChecked(const QStringList& arguments) {
    try {
        const ExitStatus status = trv::cli::run(arguments, {std::cout, std::cerr});
        std::cout.flush();
        if (std::cout) return status;
        std::cerr << "trvfiles: standard output cannot be written\n";
    } catch (const std::exception& exception) {
        std::cerr << "trvfiles: " << exception.what() << '\n';
    }
    return trv::cli::failed;
}

}  // namespace

int main(int argc, char* argv[]) {
    trv::platform::prepare_console();
    // The next file to be opened would take the place of the closed stream.
    if (isClosed(stdout)) {
        std::cerr << "trvfiles: standard output is closed\n";
        return trv::cli::failed;
    }
    const QCoreApplication application(argc, argv);
    // Not before: the application sets the locale.
    fixTexts();
    return runChecked(QCoreApplication::arguments().mid(1));
}
