#include "tools/writing/SampleError.h"

namespace quillbook::sample {

std::string SampleError::description() const {
    switch (reason) {
    case Reason::badArgument:
        return "Bad argument: " + detail;
    case Reason::libraryExists:
        return "A Messages library already stands in " + detail + "; it is left as it is.";
    case Reason::backupExists:
        return "Something already stands at " + detail + "; no backup is written there.";
    case Reason::cachesExist:
        return "Something already stands at " + detail + "; no caches are written there.";
    case Reason::databaseFailed:
        return "The database could not be written: " + detail;
    case Reason::encoderFailed:
        return "A media file could not be made: " + detail;
    case Reason::encryptionFailed:
        return "A backup could not be encrypted: " + detail;
    }
    return detail;
}

} // namespace quillbook::sample
