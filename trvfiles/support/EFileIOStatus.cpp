#include <trvfiles/support/EFileIOStatus.h>

namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

}  // namespace

const char* fileIOStatusText(EFileIOStatus status) {
    switch (status) {
        case eFileIOSuccess:
            return "success";
        case eFileIOOpenError:
            return "the file cannot be opened, read or saved";
        case eFileIOShortWrite:
            return "the file was not written to its end";
        case eFileIOContentError:
            return "the content is incomplete or malformed";
        case eFileIOStructureError:
            return "the content has the wrong structure";
    }
    return "unknown status";
}
