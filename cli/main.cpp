#include <cli/dispatch.h>
#include <trvfiles/support/platform.h>
#include <trvfiles/text/text_conversion.h>

#include <QCoreApplication>
#include <QStringList>
#include <QTextCodec>

#include <cerrno>
#include <clocale>
#include <cstdio>
#include <exception>
#include <iostream>
#include <string>
#include <type_traits>

namespace {

using trv::cli::ExitStatus;

bool isClosed(std::FILE* stream) {
    errno = 0;
    return std::ftell(stream) == -1 && errno == EBADF;
}

// If narrow text is UTF-8, arguments, file names and texts are UTF-8 too, also in a locale without
// such characters. Messages are the same in every locale.
void fixTexts() {
    static_cast<void>(std::setlocale(LC_ALL, "C"));
    if (trv::platform::narrow_text_is_utf8()) {
        QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    }
}

// A text of the system, which is narrow or wide.
template <class Text>
QString fromSystem(const Text& text) {
    if constexpr (std::is_same_v<Text, std::string>) {
        return trv::fromNarrow(text);
    } else {
        return trv::fromWide(text);
    }
}

QStringList argumentsOf(int argc, const char* const* argv) {
    QStringList arguments;
    for (const auto& argument : trv::platform::program_arguments(argc, argv))
        arguments += fromSystem(argument);
    return arguments;
}

ExitStatus runChecked(int argc, const char* const* argv) {
    try {
        const trv::cli::Console console = {std::cout, std::cerr,
                                           trv::platform::terminal_columns(stdout),
                                           trv::platform::terminal_columns(stderr)};
        const ExitStatus status = trv::cli::run(argumentsOf(argc, argv), console);
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
    // Otherwise the next file that is opened would get the descriptor of the closed stream.
    if (isClosed(stdout)) {
        std::cerr << "trvfiles: standard output is closed\n";
        return trv::cli::failed;
    }
    // The application gets no arguments, because it would remove those that it knows.
    int count = 1;
    char name[] = "trvfiles";
    char* names[] = {name, nullptr};
    const QCoreApplication application(count, names);
    // After the application, because its constructor sets the locale.
    fixTexts();
    return runChecked(argc, argv);
}
