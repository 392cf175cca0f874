#pragma once

/// @file
/// The rules of the assembly format: from elements in document order to a record.

#include <trvfiles/assembly/assembly_notes.h>
#include <trvfiles/assembly/component_body.h>
#include <trvfiles/assembly/element_start.h>
#include <trvfiles/support/CFileFault.h>
#include <trvfiles/support/EFileIOStatus.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class CTrvAssemblyData;

namespace trv {

/// Takes the elements of a document one after the other and builds the record of an assembly.
///
/// Of the elements that a rule allows once, the first one counts. Elements that no rule names are
/// ignored with all that is in them.
///
/// Threads: an object is used by one thread at a time.
class AssemblyBuilder {
public:
    /// @param maxReserved  the number of components for which the document's own numbers of
    ///                     components may reserve memory: they may be wrong
    explicit AssemblyBuilder(AssemblyNotes::Mode notes, std::size_t maxReserved = 0)
        : notes_(notes), reservable_(maxReserved) {}

    /// REQUIRES: starts and ends that are properly nested.
    void start(const ElementStart& element);
    void end();

    /// Notes a text in the element that is open, as far as that one is not ignored.
    ///
    /// @param place  where the text ends
    /// @param text   in UTF-8; without the blanks at its ends
    void ignoreText(ElementPlace place, std::string_view parentTag, std::string_view text);

    /// Whether a component has been left out.
    bool hasLeftOut() const { return hasLeftOut_; }

    /// Whether there is anything to note. REQUIRES: notes are not omitted.
    bool hasAltered() const { return notes_.hasAny(); }

    /// What finish() will return. REQUIRES: the document has ended.
    EFileIOStatus status() const { return outcome().status; }

    /// Moves what has been built to a record, as far as the status allows: its root component is
    /// replaced on success only, its dimension as soon as it is read. REQUIRES: the document has
    /// ended.
    ///
    /// @param version  takes the version of the document, if its root element has the right name
    /// @param fault    takes the reason of a failure and its place; notes are appended to those
    /// that
    ///                 it holds. May be nullptr.
    /// @return eFileIOSuccess, eFileIOContentError or eFileIOStructureError
    EFileIOStatus finish(int& version, CTrvAssemblyData& data, CFileFault* fault);

private:
    // What an open element is; the elements in it are judged by it.
    enum class Context {
        document,
        root,
        attributes,
        component,
        orientation,
        data,
        // Has no elements in it. Without notes it is ignored.
        leaf,
        ignored
    };

    using Place = ElementPlace;

    // A component that is open.
    struct Level {
        // Already in its place. Nothing else is added to the list that it is in while it is open,
        // so it does not move.
        ComponentBody* body = nullptr;
        Place place;
        // In UTF-8, for a note.
        std::string name;
        bool hasTranslation = false;
        bool hasOrientation = false;
        bool hasData = false;
        bool hasFile = false;
        // Which vectors of its "Orientation" are there.
        bool hasVector[3] = {false, false, false};
        // The components beside a "File", which is at this place; counted for a note.
        std::size_t besideFile = 0;
        Place file;
        // How many notes there were before those on this component, and before those on its
        // children.
        std::size_t notesBefore = 0;
        std::size_t notesBeforeData = 0;
    };

    struct Failure {
        EFileIOStatus status = eFileIOSuccess;
        std::string reason;
        Place place;
        CFileFault::Cause cause = CFileFault::Cause::none;
        std::string subject;
    };

    Context contextOf(const ElementStart& element);
    Context startRoot(const ElementStart& element);
    Context startInRoot(const ElementStart& element);
    Context startInAttributes(const ElementStart& element);
    Context startInComponent(const ElementStart& element);
    Context startInOrientation(const ElementStart& element);
    Context startInData(const ElementStart& element);
    Context startComponent(const ElementStart& element);
    void startData(const ElementStart& element);
    Context startFile(const ElementStart& element);
    Context startVector(const ElementStart& element, double vector[3]);
    Context leafOf(const ElementStart& element);
    void endComponent();
    void leaveOut(const Level& level);
    void noteHidden(const Level& level);
    bool readVector(const ElementStart& element, double vector[3], const char* consequence);
    bool readEnabled(const ElementStart& element);
    Failure missing(const char* child) const;
    Failure outcome() const;

    AssemblyNotes notes_;
    std::size_t reservable_;
    std::vector<Context> open_ = {Context::document};
    // How many elements are open within the one that is ignored, itself included.
    std::size_t ignored_ = 0;
    std::vector<Level> levels_;

    // The name of the open element that has no elements in it.
    std::string leaf_;

    bool hasLeftOut_ = false;
    // Of the root element; a later failure does not replace it.
    Failure rootFailure_;
    Place root_;
    bool hasVersion_ = false;
    int version_ = 0;
    bool hasAttributes_ = false;
    bool hasDimensionElement_ = false;
    bool hasDimension_ = false;
    double dimension_[3];
    bool hasComponent_ = false;
    bool isComponentBroken_ = false;
    Place component_;
    std::optional<ComponentBody> rootComponent_;
};

}  // namespace trv
