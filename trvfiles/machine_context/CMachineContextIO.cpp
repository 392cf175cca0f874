#include <trvfiles/environment/file_replacement.h>
#include <trvfiles/environment/store_writer_internal.h>
#include <trvfiles/machine_context/CMachineContextData.h>
#include <trvfiles/machine_context/CMachineContextIO.h>
#include <trvfiles/machine_context/CSectionedFile.h>
#include <trvfiles/support/number_text.h>
#include <trvfiles/text/text_conversion.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace {

constexpr int formatVersion = 2;

constexpr char headerSection[] = "header";
constexpr char machineSection[] = "machine";
constexpr char postprocessorSection[] = "postpro";
constexpr char partSection[] = "part";
constexpr char clampingSection[] = "clamping_system";

constexpr char versionKey[] = "version";
constexpr char commentKey[] = "comment";
constexpr char nameKey[] = "name";
constexpr char positionKey[] = "position";
constexpr char proximityKey[] = "proximity";
constexpr char originKey[] = "origin_program";
constexpr char referenceAxisKey[] = "reference_axis";
constexpr char surfaceGroupKey[] = "surface_group";

// Takes the sections of a parsed file into a record, in the order of the format.
class Reader {
public:
    Reader(const CSectionedFile& file, CMachineContextData& data, trv::MissingKey* missing)
        : file_(file), data_(data), missing_(missing) {}

    EFileIOStatus read() {
        open(headerSection);
        take(commentKey, &CMachineContextData::setComment);
        take(nameKey, &CMachineContextData::setName);
        if (open(machineSection)) {
            if (!take(nameKey, &CMachineContextData::setMachineName)) return miss(nameKey);
            if (!take(positionKey, &CMachineContextData::setMachinePosition))
                return miss(positionKey);
            takeProximity(&CMachineContextData::setMachineProximity);
        }
        if (open(postprocessorSection)) {
            if (!find(originKey)) return miss(originKey);
            setOrigin();
            take(referenceAxisKey, &CMachineContextData::setReferenceAxisForOriginProgram);
        }
        open(partSection);
        take(surfaceGroupKey, &CMachineContextData::setSurfaceGroup);
        open(clampingSection);
        take(nameKey, &CMachineContextData::setClampingSystem);
        takeProximity(&CMachineContextData::setClampingProximity);
        return eFileIOSuccess;
    }

private:
    bool open(const char* name) {
        name_ = name;
        section_ = &file_.section(name, true);
        return section_->lineCount() != 0;
    }

    bool find(const char* key) { return file_.sectionValue(*section_, key, true, value_); }

    bool take(const char* key, void (CMachineContextData::*set)(const std::string&)) {
        if (!find(key)) return false;
        (data_.*set)(value_);
        return true;
    }

    void takeProximity(void (CMachineContextData::*set)(double)) {
        if (!find(proximityKey)) return;
        double proximity = 0;
        std::string_view text(value_);
        trv::scan_number(text, proximity);
        (data_.*set)(proximity);
    }

    void setOrigin() {
        double origin[3];
        std::string_view text(value_);
        for (double& coordinate : origin) {
            if (!trv::scan_number(text, coordinate)) return;
        }
        data_.setOriginProgram(origin[0], origin[1], origin[2]);
    }

    EFileIOStatus miss(const char* key) {
        if (missing_ != nullptr) *missing_ = {name_, key, section_->headerLine() + 1};
        return eFileIOContentError;
    }

    const CSectionedFile& file_;
    CMachineContextData& data_;
    trv::MissingKey* missing_;
    const char* name_ = nullptr;
    const CSectionedFile::Section* section_ = nullptr;
    std::string value_;
};

}  // namespace

CMachineContextIO::CMachineContextIO(QString path) : path_(std::move(path)) {}

CMachineContextIO::~CMachineContextIO() = default;

EFileIOStatus CMachineContextIO::read(CMachineContextData& data, trv::MissingKey* missing) {
    CSectionedFile sections;
    if (sections.parseFile(path_) != 0) return eFileIOOpenError;
    return Reader(sections, data, missing).read();
}

// A section that lacks one of its keys must not replace the good one of an existing file, so a key
// that cannot be set counts like a section that cannot be added.
EFileIOStatus CMachineContextIO::write(const CMachineContextData& data,
                                       trv::file_replacement* held) {
    setVersion(formatVersion);
    EFileIOStatus status = writeHeader(data) ? eFileIOSuccess : eFileIOStructureError;
    if (!writeMachine(data)) status = eFileIOStructureError;
    if (!writePostprocessor(data)) status = eFileIOStructureError;
    if (!writePart(data)) status = eFileIOContentError;
    if (!writeClampingSystem(data)) status = eFileIOContentError;
    return status == eFileIOSuccess ? saveFile(held) : status;
}

bool CMachineContextIO::writeHeader(const CMachineContextData& data) {
    int section = findSection(headerSection);
    if (section < 0) section = addSection(headerSection);
    std::string version;
    trv::append_decimal(version, getVersion());
    return setText(section, versionKey, std::move(version)) &&
           setText(section, commentKey, data.getComment()) &&
           setText(section, nameKey, data.getName());
}

bool CMachineContextIO::writeMachine(const CMachineContextData& data) {
    const int section = addSection(machineSection);
    return setText(section, nameKey, data.getMachineName()) &&
           setText(section, positionKey, data.getMachinePosition()) &&
           setProximity(section, data.getMachineProximity());
}

bool CMachineContextIO::writePostprocessor(const CMachineContextData& data) {
    double x = 0;
    double y = 0;
    double z = 0;
    data.getOriginProgram(x, y, z);
    std::string origin;
    trv::append_fixed(origin, x);
    origin += ' ';
    trv::append_fixed(origin, y);
    origin += ' ';
    trv::append_fixed(origin, z);

    const int section = addSection(postprocessorSection);
    return setText(section, originKey, std::move(origin)) &&
           setText(section, referenceAxisKey, data.getReferenceAxisForOriginProgram());
}

bool CMachineContextIO::writePart(const CMachineContextData& data) {
    std::string surfaceGroup = data.getSurfaceGroup();
    if (surfaceGroup.empty()) return true;
    return setText(addSection(partSection), surfaceGroupKey, std::move(surfaceGroup));
}

bool CMachineContextIO::writeClampingSystem(const CMachineContextData& data) {
    const int section = addSection(clampingSection);
    std::string name = data.getClampingSystem();
    if (!name.empty() && !setText(section, nameKey, std::move(name))) return false;
    return setProximity(section, data.getClampingProximity());
}

// A line end would begin a line of its own, and that could set any key or open any section.
bool CMachineContextIO::setText(int section, const char* key, std::string value) {
    std::replace_if(
        value.begin(), value.end(), [](char c) { return c == '\r' || c == '\n'; }, ' ');
    return section >= 0 && setValue(static_cast<std::int16_t>(section), key, value.c_str()) == 0;
}

// Single precision is what the files have always carried.
bool CMachineContextIO::setProximity(int section, double value) {
    return section >= 0 && setFloatValue(static_cast<std::int16_t>(section), proximityKey,
                                         static_cast<float>(value)) == 0;
}

EFileIOStatus CMachineContextIO::saveFile(trv::file_replacement* held) {
    if (!trv::isOpenable(path_)) return eFileIOOpenError;
    std::string path;
    if (!trv::runtimePath(path_, path)) {
        // Saving goes by narrow names, and the nearest one would be another file's.
        trv::report_not_opened(trv::own_temporary_name(trv::toNarrow(path_)));
        return eFileIOOpenError;
    }
    const int result = held == nullptr ? save(path.c_str()) : save(path.c_str(), *held);
    return result < 0 ? eFileIOOpenError : eFileIOSuccess;
}
