#include "ObjectManager/Configuration/SettingsError.h"

namespace Configuration {

std::string SettingsError::toString() const {
    std::string text = file + ":";
    if (line > 0)
        text += std::to_string(line) + ":" + std::to_string(column) + ":";
    return text + " error: " + message + "\n";
}

}  // namespace Configuration
