#pragma once

/// @file
/// One component of an assembly and, with it, the tree below it.

#include <trvfiles/assembly/CComponentInfo.h>
#include <trvfiles/assembly/CTrvAssemblyNode.h>
#include <trvfiles/assembly/XForm3Gen.h>
#include <trvfiles/export.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

namespace trv {
struct ComponentBody;
}

/// A node of the assembly tree: a name, a placement relative to its parent, and either a geometry
/// file or children.
///
/// A plain value that owns its children: copying a node copies the whole subtree, destroying it
/// destroys the subtree. A default-constructed component is enabled, has empty texts, the identity
/// placement and no children, and so has a moved-from one. Texts are narrow, in the local 8-bit
/// code page (UTF-8 on Linux), and end at their first zero byte in a file and in their wide form.
/// The wide setters replace characters that the code page lacks. Nothing is normalised or checked:
/// the vectors may have any length and any angle to each other. nullptr in place of three numbers
/// leaves both sides as they are.
///
/// No operation recurses: the depth of a tree is limited by memory alone. Running out of it throws
/// std::bad_alloc; an assignment or a setter that throws leaves the component as it was.
///
/// Threads: const operations may run at once on one object; anything else needs it alone.
class TRV_EXPORT CTrvAssemblyComponentData {
public:
    /// Constructs a component with the defaults, or copies or moves a whole subtree.
    CTrvAssemblyComponentData();
    CTrvAssemblyComponentData(const CTrvAssemblyComponentData& other);
    CTrvAssemblyComponentData(CTrvAssemblyComponentData&& other) noexcept;
    CTrvAssemblyComponentData& operator=(const CTrvAssemblyComponentData& other);
    CTrvAssemblyComponentData& operator=(CTrvAssemblyComponentData&& other) noexcept;
    ~CTrvAssemblyComponentData();

    /// Whether the two subtrees are equal: texts byte for byte, `enabled`, the placement entry by
    /// entry with an absolute tolerance of 1e-6, and the children in order.
    ///
    /// `vec3` is not compared: components that differ only in it are equal. A NaN never makes a
    /// difference.
    bool operator==(const CTrvAssemblyComponentData& other) const;
    bool operator!=(const CTrvAssemblyComponentData& other) const;

    /// The display name; the getter returns a copy.
    std::string getName() const;
    void setName(std::string name);
    std::wstring getNameW() const;
    void setNameW(const std::wstring& name);

    /// Free text; the getter returns a copy.
    std::string getComment() const;
    void setComment(std::string comment);
    std::wstring getCommentW() const;
    void setCommentW(const std::wstring& comment);

    /// The geometry file of this component as it was set, no directory joined; empty if the
    /// component only groups children.
    std::string getGeometryFileName() const;
    void setGeometryFileName(std::string fileName);
    std::wstring getGeometryFileNameW() const;
    void setGeometryFileNameW(const std::wstring& fileName);

    /// A component that is not enabled is left out of the flattened list with all that is below it.
    bool isEnabled() const;
    void setEnabled(bool enabled);

    /// The origin in the parent's frame: three numbers, in the project's length unit, copied.
    void getTranslation(double translation[3]) const;
    void setTranslation(const double translation[3]);
    std::array<double, 3> getTranslation() const;
    void setTranslation(const std::array<double, 3>& translation);

    /// The images of the x, y and z axes in the parent's frame: three numbers each, copied.
    void getOrientation(double vec1[3], double vec2[3], double vec3[3]) const;
    void setOrientation(const double vec1[3], const double vec2[3], const double vec3[3]);
    std::array<std::array<double, 3>, 3> getOrientation() const;
    void setOrientation(const std::array<std::array<double, 3>, 3>& vectors);

    /// The children in order. The getter copies every subtree: a loop over its result that sets
    /// something changes copies, and the component stays as it was. Use node() to edit in place.
    /// The setter takes its argument, so a list that is moved in is not copied.
    std::vector<CTrvAssemblyComponentData> getComponents() const;
    void setComponents(std::vector<CTrvAssemblyComponentData> components);

    /// This component as the node from which all below it can be read and edited in place. Of a
    /// component that has only defaults the constant form refers to a node that no later change
    /// reaches.
    const CTrvAssemblyNode& node() const;
    CTrvAssemblyNode& node();

    /// How many geometry files are placed below this component: a child with a file counts one and
    /// hides what is below it, a child without one counts what is below it. The component itself
    /// does not count, and `enabled` makes no difference.
    unsigned long long getComponentNumber() const;

    /// Flattens the subtree: appends one entry for each enabled component with a geometry file, a
    /// component's own entry before those of its children. A disabled component is left out with
    /// its subtree; unlike counting, flattening goes below components that have a file.
    ///
    /// @param parent  the placement of this component's parent in the world
    /// @param list    is appended to, never cleared
    void getComponentFileList(Math::XForm3Gen<double> parent,
                              std::vector<CComponentInfo>& list) const;

private:
    friend struct trv::ComponentBody;

    // nullptr if every field has its default.
    std::unique_ptr<trv::ComponentBody> body_;
};
