// Names of the rejection reasons.
#include "DetectedLines.h"

const char* rejectionName(LineRejection why) {
    switch (why) {
        case LineRejection::kTooCurved:
            return "too curved";
        case LineRejection::kBlurred:
            return "blurred";
        case LineRejection::kTextured:
            return "textured";
        case LineRejection::kClustered:
            return "clustered";
        case LineRejection::kOutlier:
            return "outlier";
    }
    return "rejected";
}
