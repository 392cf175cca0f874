#pragma once

/// @file
/// One entry of a flattened assembly.

#include <trvfiles/export.h>

#include <array>
#include <string>

/// A geometry file with its final placement: one entry of the list that flattening an assembly
/// gives. It changes by assignment only.
///
/// Threads: const operations may run at once on one object.
class TRV_EXPORT CComponentInfo {
public:
    /// Copies twelve numbers and takes the name. nullptr gives three zeros.
    ///
    /// @param fileName  the geometry file's name as the component stores it, no directory joined
    /// @param vec1  three numbers: the final image of the x axis
    /// @param vec2  three numbers: the final image of the y axis
    /// @param vec3  three numbers: the final image of the z axis
    /// @param translation  three numbers: the final origin, in the project's length unit
    CComponentInfo(std::string fileName, const double vec1[3], const double vec2[3],
                   const double vec3[3], const double translation[3]);

    /// Copies and moves all fields.
    CComponentInfo(const CComponentInfo& other);
    CComponentInfo(CComponentInfo&& other) noexcept;
    CComponentInfo& operator=(const CComponentInfo& other);
    CComponentInfo& operator=(CComponentInfo&& other) noexcept;
    ~CComponentInfo();

    /// Points `translation` at this entry's own three numbers, valid while the entry lives.
    void getTranslation(const double*& translation) const;

    /// Points the three arguments at this entry's own axis vectors of three numbers each, valid
    /// while the entry lives.
    void getOrientation(const double*& vec1, const double*& vec2, const double*& vec3) const;

    /// Copies of the same numbers: the origin, and the images of the x, y and z axes.
    std::array<double, 3> getTranslation() const;
    std::array<std::array<double, 3>, 3> getOrientation() const;

    /// A copy of the geometry file's name, narrow as the component stores it, or wide.
    std::string getFileName() const;
    std::wstring getFileNameW() const;

private:
    double translation_[3] = {0, 0, 0};
    double vec1_[3] = {0, 0, 0};
    double vec2_[3] = {0, 0, 0};
    double vec3_[3] = {0, 0, 0};
    std::string fileName_;
};
