// The colours of the drawing, from the style sheet, so that both themes are written there only.
(function (viewer) {
    'use strict';

    const paletteSize = 6;
    const ghostAlpha = 56;
    const oldAlpha = 84;

    /** A custom property of the style sheet, which is #rrggbb, as three bytes. */
    function bytesOfProperty(name) {
        const text = getComputedStyle(document.documentElement).getPropertyValue(name).trim();
        return [1, 3, 5].map((i) => parseInt(text.slice(i, i + 2), 16));
    }

    function mix(a, b, share) {
        return a.map((x, i) => Math.round(x + (b[i] - x) * share));
    }

    function readTheme() {
        const palette = [];
        for (let i = 0; i < paletteSize; ++i) palette.push(bytesOfProperty(`--part-${i}`));
        const theme = { palette: palette };
        for (const name of ['missing', 'same', 'changed', 'moved', 'added', 'removed', 'hover',
            'select', 'edge', 'cut', 'grid', 'grid-strong', 'dimension', 'measure', 'canvas']) {
            theme[name] = bytesOfProperty(`--${name}`);
        }
        theme.old = theme.moved;
        return theme;
    }

    function alphaOf(item) {
        if (item.role === 'old') return oldAlpha;
        return item.isGhost ? ghostAlpha : 255;
    }

    /** The colours of items and of the other objects in the drawing. */
    viewer.makeColours = function (states) {
        let theme = readTheme();

        function baseOf(item) {
            if (item.chunk.shape.reason !== null) return theme.missing;
            if (item.role === 'part') return theme.palette[item.file % paletteSize];
            return theme[item.role];
        }

        return {
            read: () => { theme = readTheme(); },
            bytes: (name) => theme[name],
            number: (name) => theme[name].reduce((sum, x) => sum * 256 + x, 0),
            /** Red, green, blue and alpha of an item as bytes. */
            ofItem: (item) => {
                let colour = baseOf(item);
                let alpha = alphaOf(item);
                if (states.isIn(item.component, states.selected)) {
                    // In a difference the colour still has to show what kind it is.
                    colour = mix(colour, theme.select, item.role === 'part' ? 0.75 : 0.35);
                    alpha = Math.min(255, alpha * 1.6);
                }
                if (states.isIn(item.component, states.hovered)) {
                    colour = mix(colour, theme.hover, 0.55);
                    alpha = Math.min(255, alpha * 1.6);
                }
                return [...colour, alpha];
            },
        };
    };
})(window.viewer);
