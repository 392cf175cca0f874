#include <trvfiles/assembly/CComponentInfo.h>
#include <trvfiles/assembly/record_support.h>
#include <trvfiles/text/text_conversion.h>

#include <utility>

CComponentInfo::CComponentInfo(std::string fileName, const double vec1[3], const double vec2[3],
                               const double vec3[3], const double translation[3])
    : fileName_(std::move(fileName)) {
    trv::copyVector(translation, translation_);
    trv::copyVector(vec1, vec1_);
    trv::copyVector(vec2, vec2_);
    trv::copyVector(vec3, vec3_);
}

// Not in the header: what the compiler generates there is part of the host, and the library could
// never change it.
CComponentInfo::CComponentInfo(const CComponentInfo& other) = default;
CComponentInfo::CComponentInfo(CComponentInfo&& other) noexcept = default;
CComponentInfo& CComponentInfo::operator=(const CComponentInfo& other) = default;
CComponentInfo& CComponentInfo::operator=(CComponentInfo&& other) noexcept = default;
CComponentInfo::~CComponentInfo() = default;

void CComponentInfo::getTranslation(const double*& translation) const {
    translation = translation_;
}

void CComponentInfo::getOrientation(const double*& vec1, const double*& vec2,
                                    const double*& vec3) const {
    vec1 = vec1_;
    vec2 = vec2_;
    vec3 = vec3_;
}

std::array<double, 3> CComponentInfo::getTranslation() const {
    return trv::arrayOf(translation_);
}

std::array<std::array<double, 3>, 3> CComponentInfo::getOrientation() const {
    return {trv::arrayOf(vec1_), trv::arrayOf(vec2_), trv::arrayOf(vec3_)};
}

std::string CComponentInfo::getFileName() const {
    return fileName_;
}

std::wstring CComponentInfo::getFileNameW() const {
    return trv::wideText(fileName_);
}
