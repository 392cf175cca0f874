#pragma once

/// @file
/// Which files the catalogue creates for a machine context.

#include <QString>

namespace trv::cli {

struct ContextPlan {
    /// Empty in the default context of a machine position.
    QString machine;
    /// The axis file to copy, and its name as an argument of the catalogue: empty for the
    /// directory's own.
    QString axisFile;
    QString givenAxis;
    /// The name in the record.
    QString recordName;
    /// The names of the two files.
    QString context;
    QString reference;
};

/// The default context of a machine position.
ContextPlan contextPlan(int position);

/// A context for a machine.
///
/// @param axis  the axis file to copy; empty for the directory's own
/// @param name  the context's name, with or without ".mctx"; empty for one made of the others
ContextPlan contextPlan(const QString& machine, const QString& axis, const QString& name);

/// Why a file would not give these names back, a sentence; empty if it will.
QString whyPlanFails(const ContextPlan& plan);

}  // namespace trv::cli
