// Names of the stimulus types. Made by scripts/records from the library; do not edit.
#pragma once

#include <cstdint>

inline const char* StimulusName(int32_t type) {
    switch (type) {
        case 1:
            return "sine";
        case 2:
            return "noise";
        case 3:
            return "pulse";
        case 4:
            return "ramp";
        case 5:
            return "file wave";
        case 6:
            return "generic";
        case 7:
            return "summed";
        case 8:
            return "trigger series";
        case 9:
            return "segmented noise";
        case 10:
            return "binary noise";
        case 11:
            return "dynamic clamp";
        case 12:
            return "circle pulse";
        case 13:
            return "alternating voltage";
        case 14:
            return "spatial";
        default:
            return "unknown";
    }
}
