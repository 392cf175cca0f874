#include <cli/env_commands.h>

namespace trv::cli {

CommandGroup envCommands() {
    return {envListCommand(), envExplainCommand(),  envExpandCommand(),
            envFindCommand(), envMessagesCommand(), envCheckCommand()};
}

}  // namespace trv::cli
