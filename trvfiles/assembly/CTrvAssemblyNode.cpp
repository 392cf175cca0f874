#include <trvfiles/assembly/CTrvAssemblyComponentData.h>
#include <trvfiles/assembly/CTrvAssemblyNode.h>
#include <trvfiles/assembly/component_body.h>
#include <trvfiles/assembly/record_support.h>
#include <trvfiles/text/text_conversion.h>

#include <algorithm>
#include <utility>
#include <vector>

using trv::ComponentBody;

namespace {

// Each node is the base of a body: nothing else can make one.
const ComponentBody& bodyOf(const CTrvAssemblyNode& node) {
    return static_cast<const ComponentBody&>(node);
}

ComponentBody& bodyOf(CTrvAssemblyNode& node) {
    return static_cast<ComponentBody&>(node);
}

// A list of the open levels instead of recursion: the tree may be deeper than the stack. The number
// of children is asked for at each step, because a visitor may change it.
template <class Node, class Visitor>
bool walk(Node& root, const Visitor& visitor) {
    struct Level {
        Node* parent;
        std::size_t next;
    };
    std::vector<Level> levels;
    Node* node = &root;
    for (;;) {
        const CTrvAssemblyNode::Visit answer = visitor(*node, levels.size());
        if (answer == CTrvAssemblyNode::Visit::stop) return false;
        if (answer == CTrvAssemblyNode::Visit::proceed) levels.push_back({node, 0});
        while (!levels.empty() && levels.back().next >= levels.back().parent->getChildCount())
            levels.pop_back();
        if (levels.empty()) return true;
        Level& level = levels.back();
        node = &level.parent->getChild(level.next++);
    }
}

}  // namespace

std::string CTrvAssemblyNode::getName() const {
    return bodyOf(*this).name;
}
void CTrvAssemblyNode::setName(std::string name) {
    bodyOf(*this).name = std::move(name);
}
std::wstring CTrvAssemblyNode::getNameW() const {
    return trv::wideText(bodyOf(*this).name);
}
void CTrvAssemblyNode::setNameW(const std::wstring& name) {
    bodyOf(*this).name = trv::narrowText(name);
}

std::string CTrvAssemblyNode::getComment() const {
    return bodyOf(*this).comment;
}
void CTrvAssemblyNode::setComment(std::string comment) {
    bodyOf(*this).comment = std::move(comment);
}
std::wstring CTrvAssemblyNode::getCommentW() const {
    return trv::wideText(bodyOf(*this).comment);
}
void CTrvAssemblyNode::setCommentW(const std::wstring& comment) {
    bodyOf(*this).comment = trv::narrowText(comment);
}

std::string CTrvAssemblyNode::getGeometryFileName() const {
    return bodyOf(*this).geometryFileName;
}
void CTrvAssemblyNode::setGeometryFileName(std::string fileName) {
    bodyOf(*this).geometryFileName = std::move(fileName);
}
std::wstring CTrvAssemblyNode::getGeometryFileNameW() const {
    return trv::wideText(bodyOf(*this).geometryFileName);
}
void CTrvAssemblyNode::setGeometryFileNameW(const std::wstring& fileName) {
    bodyOf(*this).geometryFileName = trv::narrowText(fileName);
}

bool CTrvAssemblyNode::isEnabled() const {
    return bodyOf(*this).enabled;
}
void CTrvAssemblyNode::setEnabled(bool enabled) {
    bodyOf(*this).enabled = enabled;
}

std::array<double, 3> CTrvAssemblyNode::getTranslation() const {
    return trv::arrayOf(bodyOf(*this).translation);
}
void CTrvAssemblyNode::setTranslation(const std::array<double, 3>& translation) {
    trv::copyVector(translation.data(), bodyOf(*this).translation);
}

std::array<std::array<double, 3>, 3> CTrvAssemblyNode::getOrientation() const {
    const ComponentBody& body = bodyOf(*this);
    return {trv::arrayOf(body.vec1), trv::arrayOf(body.vec2), trv::arrayOf(body.vec3)};
}
void CTrvAssemblyNode::setOrientation(const std::array<std::array<double, 3>, 3>& vectors) {
    ComponentBody& body = bodyOf(*this);
    trv::copyVector(vectors[0].data(), body.vec1);
    trv::copyVector(vectors[1].data(), body.vec2);
    trv::copyVector(vectors[2].data(), body.vec3);
}

std::size_t CTrvAssemblyNode::getChildCount() const {
    return bodyOf(*this).components.size();
}

const CTrvAssemblyNode& CTrvAssemblyNode::getChild(std::size_t index) const {
    return bodyOf(*this).components[index];
}
CTrvAssemblyNode& CTrvAssemblyNode::getChild(std::size_t index) {
    return bodyOf(*this).components[index];
}

CTrvAssemblyNode& CTrvAssemblyNode::insertChild(std::size_t index,
                                                CTrvAssemblyComponentData component) {
    std::vector<ComponentBody>& list = bodyOf(*this).components;
    const auto place = list.begin() + static_cast<std::ptrdiff_t>(std::min(index, list.size()));
    return *list.insert(place, std::move(ComponentBody::editable(component)));
}

CTrvAssemblyNode& CTrvAssemblyNode::addChild(CTrvAssemblyComponentData component) {
    return insertChild(getChildCount(), std::move(component));
}

bool CTrvAssemblyNode::removeChild(std::size_t index) {
    std::vector<ComponentBody>& list = bodyOf(*this).components;
    if (index >= list.size()) return false;
    list.erase(list.begin() + static_cast<std::ptrdiff_t>(index));
    return true;
}

CTrvAssemblyComponentData CTrvAssemblyNode::toComponent() const {
    return ComponentBody::toComponent(bodyOf(*this).copy());
}

void CTrvAssemblyNode::assign(CTrvAssemblyComponentData component) {
    bodyOf(*this) = std::move(ComponentBody::editable(component));
}

// Not in the header: on Windows an inline function of an exported class is exported as well.
CTrvAssemblyNode::Children<const CTrvAssemblyNode> CTrvAssemblyNode::children() const {
    return Children<const CTrvAssemblyNode>(*this);
}
CTrvAssemblyNode::Children<CTrvAssemblyNode> CTrvAssemblyNode::children() {
    return Children<CTrvAssemblyNode>(*this);
}

bool CTrvAssemblyNode::visit(const ConstVisitor& visitor) const {
    return walk(*this, visitor);
}
bool CTrvAssemblyNode::visit(const Visitor& visitor) {
    return walk(*this, visitor);
}
