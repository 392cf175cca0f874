#pragma once

/// @file
/// The notes about an assembly document: what its builder ignores or replaces.

#include <trvfiles/assembly/known_names.h>
#include <trvfiles/support/CFileFault.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace trv {

class ElementStart;

/// Where an element is in its document, counted from 1; 0 if it is not known.
struct ElementPlace {
    int line = 0;
    int column = 0;
};

/// Collects notes, or only finds out whether there is one.
///
/// Threads: an object is used by one thread at a time.
class AssemblyNotes {
public:
    enum class Mode {
        /// There is a text for each note.
        collected,
        /// hasAny() is right.
        detected,
        /// Nothing is asked of an element that no other rule needs.
        omitted,
    };

    explicit AssemblyNotes(Mode mode) : mode_(mode) {}

    bool areCollected() const { return mode_ == Mode::collected; }
    bool areOmitted() const { return mode_ == Mode::omitted; }

    /// Whether there was a reason for a note, also if the note has been dropped since.
    bool hasAny() const { return hasAny_; }

    /// Adds a note. REQUIRES: count() has returned true for it.
    ///
    /// @param attribute  the one that the note is about, if it is about one
    /// @return the note, for its other members; valid until the next one is added
    CFileFault::Note& add(CFileFault::Note::Kind kind, ElementPlace place, std::string_view subject,
                          std::string text, std::string_view attribute = {});

    /// Counts a note, and returns whether add() has to follow. The text of a note is costly.
    bool count() {
        hasAny_ = true;
        return areCollected();
    }

    /// Notes that an element is ignored: it is not known in its parent, or it occurs again.
    void addIgnored(const ElementStart& element, const KnownContent& parent,
                    std::string_view parentTag) {
        if (!areOmitted()) noteIgnored(element, parent, parentTag);
    }

    /// Notes the attributes that an element should not have.
    void addUnknownAttributes(const ElementStart& element, const KnownContent& known) {
        if (!areOmitted()) noteUnknownAttributes(element, known);
    }

    /// How many notes there are, and a way back to fewer.
    std::size_t size() const { return notes_.size(); }
    void dropAfter(std::size_t size) { notes_.resize(size); }

    /// Moves the notes to the end of a list.
    void moveTo(std::vector<CFileFault::Note>& notes);

private:
    void noteIgnored(const ElementStart& element, const KnownContent& parent,
                     std::string_view parentTag);
    void noteUnknownAttributes(const ElementStart& element, const KnownContent& known);

    const Mode mode_;
    bool hasAny_ = false;
    std::vector<CFileFault::Note> notes_;
};

}  // namespace trv
