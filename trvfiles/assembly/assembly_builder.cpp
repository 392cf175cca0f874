#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/assembly/assembly_builder.h>
#include <trvfiles/assembly/assembly_names.h>
#include <trvfiles/assembly/number_reading.h>
#include <trvfiles/support/file_fault.h>

#include <QString>

#include <algorithm>
#include <charconv>
#include <utility>

namespace trv {
namespace {

using Kind = CFileFault::Note::Kind;
using Cause = CFileFault::Cause;
using names::isName;

// Which of the vectors of an "Orientation" an element is; -1 if it is none.
int vectorIndex(std::string_view tag) {
    if (isName(tag, names::vec1)) return 0;
    if (isName(tag, names::vec2)) return 1;
    return isName(tag, names::vec3) ? 2 : -1;
}

std::string_view valueOf(const ElementStart& element, std::string_view attribute) {
    std::string_view value;
    static_cast<void>(element.find(attribute, value));
    return value;
}

}  // namespace

// An element that is ignored is not entered in the list of open ones. Counting those in it is
// enough to find its end.
void AssemblyBuilder::start(const ElementStart& element) {
    if (ignored_ > 0) {
        ++ignored_;
        return;
    }
    const Context context = contextOf(element);
    if (context == Context::ignored) {
        ignored_ = 1;
    } else {
        open_.push_back(context);
    }
}

void AssemblyBuilder::end() {
    if (ignored_ > 0) {
        --ignored_;
        return;
    }
    if (open_.back() == Context::component) endComponent();
    open_.pop_back();
}

void AssemblyBuilder::ignoreText(ElementPlace place, std::string_view parentTag,
                                 std::string_view text) {
    if (ignored_ > 0 || !notes_.count()) return;
    CFileFault::Note& note = notes_.add(
        Kind::ignoredText, place, {},
        "text in <" + std::string(parentTag) + "> is ignored: " + quoted_beginning(text));
    note.parent = parentTag;
    note.value = beginning_of(text);
}

AssemblyBuilder::Context AssemblyBuilder::contextOf(const ElementStart& element) {
    switch (open_.back()) {
        case Context::document:
            return startRoot(element);
        case Context::root:
            return startInRoot(element);
        case Context::attributes:
            return startInAttributes(element);
        case Context::component:
            return startInComponent(element);
        case Context::orientation:
            return startInOrientation(element);
        case Context::data:
            return startInData(element);
        case Context::leaf:
            notes_.addIgnored(element, {}, leaf_);
            break;
        case Context::ignored:
            break;
    }
    return Context::ignored;
}

// A leaf is open only to note what is in it.
AssemblyBuilder::Context AssemblyBuilder::leafOf(const ElementStart& element) {
    if (notes_.areOmitted()) return Context::ignored;
    leaf_ = element.tag();
    return Context::leaf;
}

AssemblyBuilder::Context AssemblyBuilder::startRoot(const ElementStart& element) {
    root_ = element.place();
    if (!isName(element.tag(), names::root)) {
        rootFailure_ = {
            eFileIOStructureError,
            "the root element is <" + std::string(element.tag()) + ">, not <" + names::root + ">",
            root_, Cause::wrongRoot, std::string(element.tag())};
        return Context::ignored;
    }
    notes_.addUnknownAttributes(element, known::root);
    bool isInteger = false;
    const std::string_view version = valueOf(element, names::version);
    version_ =
        QString::fromUtf8(version.data(), static_cast<int>(version.size())).toInt(&isInteger);
    hasVersion_ = true;
    if (isInteger) return Context::root;
    rootFailure_ = {eFileIOContentError,
                    std::string("the version of <") + names::root + "> is no integer", root_,
                    Cause::wrongVersion, std::string(version)};
    return Context::ignored;
}

AssemblyBuilder::Context AssemblyBuilder::startInRoot(const ElementStart& element) {
    if (isName(element.tag(), names::attributes) && !hasAttributes_) {
        hasAttributes_ = true;
        notes_.addUnknownAttributes(element, known::attributes);
        return Context::attributes;
    }
    if (!isName(element.tag(), names::component) || hasComponent_) {
        notes_.addIgnored(element, known::root, names::root);
        return Context::ignored;
    }
    hasComponent_ = true;
    component_ = element.place();
    return startComponent(element);
}

AssemblyBuilder::Context AssemblyBuilder::startInAttributes(const ElementStart& element) {
    if (!isName(element.tag(), names::dimension) || hasDimensionElement_) {
        notes_.addIgnored(element, known::attributes, names::attributes);
        return Context::ignored;
    }
    hasDimensionElement_ = true;
    hasDimension_ = readVector(element, dimension_, "the whole dimension is ignored");
    return leafOf(element);
}

AssemblyBuilder::Context AssemblyBuilder::startComponent(const ElementStart& element) {
    ComponentBody& body =
        levels_.empty() ? rootComponent_.emplace() : levels_.back().body->components.emplace_back();
    Level& level = levels_.emplace_back();
    level.body = &body;
    level.notesBefore = notes_.size();
    level.place = element.place();
    notes_.addUnknownAttributes(element, known::component);
    if (notes_.areCollected()) level.name = valueOf(element, names::name);
    body.name = element.narrow(names::name);
    body.comment = element.narrow(names::comment);
    body.enabled = readEnabled(element);
    return Context::component;
}

AssemblyBuilder::Context AssemblyBuilder::startInComponent(const ElementStart& element) {
    Level& level = levels_.back();
    const std::string_view tag = element.tag();
    if (isName(tag, names::translation) && !level.hasTranslation) {
        level.hasTranslation = true;
        return startVector(element, level.body->translation);
    }
    if (isName(tag, names::orientation) && !level.hasOrientation) {
        level.hasOrientation = true;
        notes_.addUnknownAttributes(element, known::orientation);
        return Context::orientation;
    }
    if (isName(tag, names::data) && !level.hasData) {
        level.hasData = true;
        startData(element);
        return Context::data;
    }
    notes_.addIgnored(element, known::component, names::component);
    return Context::ignored;
}

AssemblyBuilder::Context AssemblyBuilder::startVector(const ElementStart& element,
                                                      double vector[3]) {
    readVector(element, vector, "it and those after it are 0");
    return leafOf(element);
}

AssemblyBuilder::Context AssemblyBuilder::startInOrientation(const ElementStart& element) {
    Level& level = levels_.back();
    double* const vectors[] = {level.body->vec1, level.body->vec2, level.body->vec3};
    const int i = vectorIndex(element.tag());
    if (i < 0 || level.hasVector[i]) {
        notes_.addIgnored(element, known::orientation, names::orientation);
        return Context::ignored;
    }
    level.hasVector[i] = true;
    return startVector(element, vectors[i]);
}

// The number of components in the file is a hint: reserving memory saves moving the components
// while their list grows, and half of the peak memory. It may be wrong, so all hints of a document
// together reserve at most what its size allows.
void AssemblyBuilder::startData(const ElementStart& element) {
    Level& level = levels_.back();
    notes_.addUnknownAttributes(element, known::data);
    level.notesBeforeData = notes_.size();
    const std::string_view text = valueOf(element, names::number);
    std::size_t number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    number = std::min(number, reservable_);
    reservable_ -= number;
    level.body->components.reserve(number);
}

AssemblyBuilder::Context AssemblyBuilder::startInData(const ElementStart& element) {
    Level& level = levels_.back();
    if (isName(element.tag(), names::component)) {
        ++level.besideFile;
        // A file hides the components beside it, those before it as well.
        return level.hasFile ? Context::ignored : startComponent(element);
    }
    if (isName(element.tag(), names::file) && !level.hasFile) return startFile(element);
    notes_.addIgnored(element, known::data, names::data);
    return Context::ignored;
}

AssemblyBuilder::Context AssemblyBuilder::startFile(const ElementStart& element) {
    Level& level = levels_.back();
    level.hasFile = true;
    level.file = element.place();
    std::vector<ComponentBody>().swap(level.body->components);
    // Those about the components that it hides.
    if (level.besideFile > 0) notes_.dropAfter(level.notesBeforeData);
    notes_.addUnknownAttributes(element, known::file);
    level.body->geometryFileName = element.narrow(names::name);
    return leafOf(element);
}

void AssemblyBuilder::endComponent() {
    const Level level = std::move(levels_.back());
    levels_.pop_back();
    const bool hasVectors = level.hasVector[0] && level.hasVector[1] && level.hasVector[2];
    if (level.hasOrientation && !hasVectors) {
        leaveOut(level);
        return;
    }
    if (level.hasFile && level.besideFile > 0) noteHidden(level);
    // A list that has grown without a hint, or after a wrong one, may be twice as long as its
    // components.
    level.body->components.shrink_to_fit();
}

void AssemblyBuilder::noteHidden(const Level& level) {
    if (!notes_.count()) return;
    const bool isOne = level.besideFile == 1;
    CFileFault::Note& note = notes_.add(Kind::hiddenByFile, level.file, level.name,
                                        "the <File> of component " + quoted_beginning(level.name) +
                                            " hides " + std::to_string(level.besideFile) +
                                            (isOne ? " component beside it, which is ignored"
                                                   : " components beside it, which are ignored"));
    note.count = static_cast<int>(level.besideFile);
}

// The note about a component that is left out replaces those about what is in it.
void AssemblyBuilder::leaveOut(const Level& level) {
    if (levels_.empty()) {
        isComponentBroken_ = true;
        return;
    }
    levels_.back().body->components.pop_back();
    notes_.dropAfter(level.notesBefore);
    hasLeftOut_ = true;
    if (!notes_.count()) return;
    notes_.add(Kind::leftOut, level.place, level.name,
               "component " + quoted_beginning(level.name) +
                   " is left out: its <Orientation> is not complete");
}

// Stops at the first coordinate that is not a number; it and those after it are 0. A number out of
// range has a value, too, but is refused like a word.
//
// @param consequence  for a note: what becomes of the numbers then
bool AssemblyBuilder::readVector(const ElementStart& element, double vector[3],
                                 const char* consequence) {
    vector[0] = vector[1] = vector[2] = 0;
    notes_.addUnknownAttributes(element, known::vector);
    static constexpr std::string_view coordinates[] = {names::x, names::y, names::z};
    for (int i = 0; i < 3; ++i) {
        std::string_view text;
        double value = 0;
        if (!element.find(coordinates[i], text) || readNumber(text, value)) {
            vector[i] = value;
            continue;
        }
        if (!notes_.count()) return false;
        CFileFault::Note& note =
            notes_.add(Kind::notANumber, element.place(), element.tag(),
                       std::string(coordinates[i]) + " of <" + std::string(element.tag()) +
                           "> is not a number: " + quoted_number(text) + "; " + consequence,
                       coordinates[i]);
        note.value = text;
        return false;
    }
    return true;
}

bool AssemblyBuilder::readEnabled(const ElementStart& element) {
    std::string_view text;
    if (!element.find(names::enabled, text) || text == "1") return true;
    if (text == "0" || !notes_.count()) return false;
    const std::string value(text);
    const std::string_view name = valueOf(element, names::name);
    notes_
        .add(Kind::notAFlag, element.place(), name,
             "component " + quoted_beginning(name) + " is disabled: enabled is " +
                 quoted_beginning(value),
             names::enabled)
        .value = value;
    return false;
}

AssemblyBuilder::Failure AssemblyBuilder::missing(const char* child) const {
    return {eFileIOContentError, std::string("<") + names::root + "> has no <" + child + '>', root_,
            Cause::missingElement, child};
}

// Of several failures the first one in this order counts, wherever it is in the document.
AssemblyBuilder::Failure AssemblyBuilder::outcome() const {
    if (rootFailure_.status != eFileIOSuccess) return rootFailure_;
    if (!hasAttributes_) return missing(names::attributes);
    if (!hasComponent_) return missing(names::component);
    if (!isComponentBroken_) return {};
    return {eFileIOStructureError,
            "the root component's <Orientation> is not complete",
            component_,
            Cause::incompleteOrientation,
            {}};
}

EFileIOStatus AssemblyBuilder::finish(int& version, CTrvAssemblyData& data, CFileFault* fault) {
    const Failure failure = outcome();
    if (hasVersion_) version = version_;
    if (fault != nullptr) notes_.moveTo(fault->notes);
    if (hasAttributes_ && hasDimension_) data.setDimension(dimension_);
    if (failure.status != eFileIOSuccess) {
        set_fault(fault, failure.cause, failure.reason, failure.place.line, failure.place.column,
                  failure.subject);
        return failure.status;
    }
    data.getRootComponent() = ComponentBody::toComponent(std::move(*rootComponent_));
    return eFileIOSuccess;
}

}  // namespace trv
