#pragma once

/// @file
/// A whole assembly: its overall size and its root component.

#include <trvfiles/assembly/CComponentInfo.h>
#include <trvfiles/assembly/CTrvAssemblyComponentData.h>
#include <trvfiles/export.h>

#include <array>
#include <memory>
#include <vector>

/// An assembly: how a set-up is put together from geometry files.
///
/// A plain value. A default-constructed assembly has the dimension 0, 0, 0 and a
/// default-constructed root, and so has a moved-from one. nullptr in place of three numbers leaves
/// both sides as they are.
///
/// Assigning copies or moves into the root that is there: references to it stay valid and refer to
/// the new root component. Running out of memory throws std::bad_alloc; an assignment or a setter
/// that throws leaves the assembly as it was.
///
/// Threads: const operations may run at once on one object; anything else needs it alone.
class TRV_EXPORT CTrvAssemblyData {
public:
    /// Constructs an assembly with the defaults, or copies or moves all components.
    CTrvAssemblyData();
    CTrvAssemblyData(const CTrvAssemblyData& other);
    CTrvAssemblyData(CTrvAssemblyData&& other) noexcept;
    CTrvAssemblyData& operator=(const CTrvAssemblyData& other);
    CTrvAssemblyData& operator=(CTrvAssemblyData&& other) noexcept;
    ~CTrvAssemblyData();

    /// The overall size along x, y and z: three numbers, in the project's length unit, copied.
    void getDimension(double dimension[3]) const;
    void setDimension(const double dimension[3]);
    std::array<double, 3> getDimension() const;
    void setDimension(const std::array<double, 3>& dimension);

    /// The root of the tree, to be read or edited in place; its node() gives the components below
    /// it in their places. The reference is valid while the assembly lives and is not moved from;
    /// assigning to the assembly, setRootComponent() and reading a file into it keep it valid. For
    /// a moved-from assembly the constant form refers to a default-constructed component, which no
    /// later change reaches.
    const CTrvAssemblyComponentData& getRootComponent() const;
    CTrvAssemblyComponentData& getRootComponent();

    /// Assigns a copy of `component` over the root. The root itself may be given.
    void setRootComponent(const CTrvAssemblyComponentData& component);

    /// Whether the squared distance of the dimensions is at most 1e-6 and the roots are equal. A
    /// NaN in a dimension never makes a difference.
    bool operator==(const CTrvAssemblyData& other) const;
    bool operator!=(const CTrvAssemblyData& other) const;

    /// The root's count of geometry files; a file of the root itself does not count.
    unsigned long long getComponentNumber() const;

    /// The flattened tree: one entry a placed geometry file, in world coordinates. The root's own
    /// placement applies to every entry.
    std::vector<CComponentInfo> getComponentFileList() const;

private:
    struct Body;

    // nullptr in a moved-from assembly only.
    std::unique_ptr<Body> body_;
};
