#include <cli/env_commands.h>

namespace trv::cli {

// In the order of the help.
CommandGroup envCommands() {
    return {envListCommand(), envExplainCommand(),  envExpandCommand(),
            envFindCommand(), envMessagesCommand(), envCheckCommand()};
}

}  // namespace trv::cli
