// The commands of the page in one table: their buttons, their keys and the help come from it.
(function (viewer) {
    'use strict';

    const svg = 'http://www.w3.org/2000/svg';

    function makeIcon(name) {
        const icon = document.createElementNS(svg, 'svg');
        const use = document.createElementNS(svg, 'use');
        icon.setAttribute('aria-hidden', 'true');
        icon.setAttribute('viewBox', '0 0 20 20');
        use.setAttribute('href', `#icon-${name}`);
        icon.append(use);
        return icon;
    }

    const keyNames = [
        [' ', 'Space'], ['ArrowLeft', '←'], ['ArrowRight', '→'], ['ArrowUp', '↑'],
        ['ArrowDown', '↓'],
    ];

    function keyText(key) {
        return keyNames.reduce((text, [name, sign]) => text.replace(name, sign), key);
    }

    function labelOf(command) {
        return command.keys.length > 0 ? `${command.title} (${keyText(command.keys[0])})`
            : command.title;
    }

    /** Shows in a button whether a command is on. */
    function showState(command) {
        if (command.isOn) command.button.setAttribute('aria-pressed', String(command.isOn()));
    }

    function addButton(command, toolbar) {
        const button = document.createElement('button');
        button.type = 'button';
        button.id = `command-${command.id}`;
        button.title = labelOf(command);
        button.setAttribute('aria-label', command.title);
        if (command.icon) button.append(makeIcon(command.icon));
        else button.textContent = command.text;
        button.addEventListener('click', () => command.run());
        toolbar.append(button);
        command.button = button;
    }

    function addButtons(commands, toolbar) {
        let group = '';
        for (const command of commands.filter((one) => one.icon || one.text)) {
            if (group !== '' && command.group !== group) {
                toolbar.append(document.createElement('hr'));
            }
            group = command.group;
            addButton(command, toolbar);
        }
    }

    function addHelp(commands, table) {
        let group = '';
        for (const command of commands.filter((one) => one.keys.length > 0)) {
            if (command.group !== group) {
                const heading = document.createElement('th');
                heading.colSpan = 2;
                heading.textContent = command.group;
                table.insertRow().append(heading);
                group = command.group;
            }
            const row = table.insertRow();
            const keys = row.insertCell();
            for (const key of command.keys) {
                const element = document.createElement('kbd');
                element.textContent = keyText(key);
                keys.append(element, ' ');
            }
            row.insertCell().textContent = command.title;
        }
    }

    function isTyping(target) {
        return target instanceof HTMLInputElement || target instanceof HTMLTextAreaElement;
    }

    function isForButton(event) {
        return event.target instanceof HTMLButtonElement && [' ', 'Enter'].includes(event.key);
    }

    /**
     * Connects commands with buttons, keys and help.
     *
     * @param commands  a list of id, title, group, keys, run(), and for a button icon or text and
     *                  isOn()
     * @return refresh() shows which commands are on
     */
    viewer.connectCommands = function (commands) {
        const byKey = new Map();
        commands.forEach((command) => command.keys.forEach((key) => byKey.set(key, command)));
        addButtons(commands, document.getElementById('toolbar'));
        addHelp(commands, document.getElementById('help-keys'));
        const refresh = () => commands.filter((one) => one.button).forEach(showState);

        document.addEventListener('keydown', (event) => {
            if (event.ctrlKey || event.metaKey || event.altKey) return;
            if (isTyping(event.target)) {
                if (event.key === 'Escape') event.target.blur();
                return;
            }
            const isPan = event.shiftKey && event.key.startsWith('Arrow');
            const command = byKey.get(isPan ? `Shift+${event.key}` : event.key);
            if (!command || isForButton(event)) return;
            event.preventDefault();
            command.run();
        });
        refresh();
        return { refresh: refresh };
    };
})(window.viewer);
