#pragma once

/// @file
/// One machine context: how a part is set up on a machine.

#include <trvfiles/export.h>

#include <array>
#include <memory>
#include <string>

/// On which machine a part is set up, in which position, with which clamping system and surface
/// group, and at which point the program origin is.
///
/// A plain value. Every text has a narrow form (the local 8-bit code page, UTF-8 on Linux; up to
/// the first zero byte) and a wide form (as it is); both forms share one field. Getters return
/// copies. The narrow getters replace characters that the code page lacks, the wide ones keep them.
/// The setters check nothing. A default-constructed record has empty texts and zeros, and so has a
/// moved-from one.
///
/// Threads: const operations may run at once on one object; anything else needs it alone.
class TRV_EXPORT CMachineContextData {
public:
    /// Constructs an empty record, or copies or moves all fields.
    CMachineContextData();
    CMachineContextData(const CMachineContextData& other);
    CMachineContextData(CMachineContextData&& other) noexcept;
    CMachineContextData& operator=(const CMachineContextData& other);
    CMachineContextData& operator=(CMachineContextData&& other) noexcept;
    ~CMachineContextData();

    /// The context's own name.
    std::string getName() const;
    void setName(const std::string& name);
    std::wstring getNameW() const;
    void setNameW(const std::wstring& name);

    /// Free text.
    std::string getComment() const;
    void setComment(const std::string& comment);
    std::wstring getCommentW() const;
    void setCommentW(const std::wstring& comment);

    /// The machine that the part is set up on.
    std::string getMachineName() const;
    void setMachineName(const std::string& machineName);
    std::wstring getMachineNameW() const;
    void setMachineNameW(const std::wstring& machineName);

    /// The position on the machine: the name of a reference axis file.
    std::string getMachinePosition() const;
    void setMachinePosition(const std::string& machinePosition);
    std::wstring getMachinePositionW() const;
    void setMachinePositionW(const std::wstring& machinePosition);

    /// The surface group of the part.
    std::string getSurfaceGroup() const;
    void setSurfaceGroup(const std::string& surfaceGroup);
    std::wstring getSurfaceGroupW() const;
    void setSurfaceGroupW(const std::wstring& surfaceGroup);

    /// The system that clamps the part.
    std::string getClampingSystem() const;
    void setClampingSystem(const std::string& clampingSystem);
    std::wstring getClampingSystemW() const;
    void setClampingSystemW(const std::wstring& clampingSystem);

    /// The axis that the program origin is given in.
    std::string getReferenceAxisForOriginProgram() const;
    void setReferenceAxisForOriginProgram(const std::string& referenceAxis);
    std::wstring getReferenceAxisForOriginProgramW() const;
    void setReferenceAxisForOriginProgramW(const std::wstring& referenceAxis);

    /// The program origin, in the project's length unit.
    void setOriginProgram(double x, double y, double z);
    void getOriginProgram(double& x, double& y, double& z) const;
    void setOriginProgram(const std::array<double, 3>& origin);
    std::array<double, 3> getOriginProgram() const;

    /// The distance to keep from the machine, in the project's length unit.
    void setMachineProximity(double proximity);
    double getMachineProximity() const;

    /// The distance to keep from the clamping system, in the project's length unit.
    void setClampingProximity(double proximity);
    double getClampingProximity() const;

    /// Puts every field back to its default.
    void clear();

    /// Whether all texts are empty and all numbers are zero: the squared distance of the origin
    /// from (0, 0, 0) is at most 1e-6, and so is the amount of each proximity. A NaN is not zero.
    bool isNull() const;
    bool isNotNull() const;

private:
    struct Body;

    // nullptr if every field has its default.
    std::unique_ptr<Body> body_;
};
