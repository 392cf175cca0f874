// What an assembly and another one have in common: the role of each component in a difference.
(function (viewer) {
    'use strict';

    // A later role replaces an earlier one.
    const order = ['changed', 'moved', 'enabled', 'added', 'removed'];

    function setRole(model, roles, component, role, isBranch) {
        if (component < 0) return;
        const end = isBranch ? model.components.end[component] : component + 1;
        roles.fill(role, component, end);
    }

    /** An enabled component appears, a disabled one vanishes, as if it was added or removed. */
    function applyEnabled(model, roles, entry) {
        if (entry.old < 0 || entry.new < 0) return;
        const before = model.components.enabled[entry.old];
        const after = model.components.enabled[entry.new];
        if (before && !after) setRole(model, roles, entry.old, 'removed', true);
        if (!before && after) setRole(model, roles, entry.new, 'added', true);
    }

    const apply = {
        changed: (model, roles, entry) => setRole(model, roles, entry.new, 'changed', false),
        moved: (model, roles, entry) => {
            setRole(model, roles, entry.old, 'old', true);
            setRole(model, roles, entry.new, 'moved', true);
        },
        enabled: applyEnabled,
        added: (model, roles, entry) => setRole(model, roles, entry.new, 'added', true),
        removed: (model, roles, entry) => setRole(model, roles, entry.old, 'removed', true),
    };

    /** The indices of a difference as those of the model: the second assembly follows the first. */
    function withModelIndices(model, entry) {
        const first = model.assemblies[1].first;
        return Object.assign({}, entry, { new: entry.new < 0 ? -1 : entry.new + first });
    }

    /**
     * The role of each component: "part" without a difference; else "same", "changed", "moved",
     * "added", "removed", "old" (the former place of something that moved), or null for what the
     * second assembly shows anyway.
     */
    viewer.rolesOf = function (model) {
        const roles = new Array(model.components.count).fill('part');
        if (!model.differences) return roles;
        roles.fill(null, 0, model.assemblies[1].first);
        roles.fill('same', model.assemblies[1].first);
        model.differences = model.differences.map((entry) => withModelIndices(model, entry));
        for (const role of order) {
            for (const entry of model.differences) {
                if (entry.kind === role || role === 'enabled') apply[role](model, roles, entry);
            }
        }
        return roles;
    };

    /** The component that a difference is about: in the second assembly if it is there. */
    viewer.subjectOf = function (entry) {
        return entry.new >= 0 ? entry.new : entry.old;
    };
})(window.viewer);
