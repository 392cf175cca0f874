#pragma once

/// @file
/// The name that was probably meant by a misspelled one.
///
/// Threads: any.

#include <QString>
#include <QStringList>

namespace trv::cli {

/// The candidate that is most similar to a word: it differs by the fewest inserted, missing,
/// replaced or swapped characters, regardless of case. Empty if none differs by at most a third of
/// the word's characters, rounded up, or if the word has fewer than 3 or more than 64. Of several
/// equally similar ones the first.
QString nearestName(const QString& word, const QStringList& candidates);

/// "; did you mean 'show'?", or nothing if no candidate is similar.
QString suggestionFor(const QString& word, const QStringList& candidates);

}  // namespace trv::cli
