#pragma once

#include <string>

#include "ObjectManager/Configuration/SettingsReader.h"

/// Settings as a text with a line for each key, and the errors below.
[[nodiscard]] std::string textOf(const Configuration::Settings& settings);
[[nodiscard]] std::string textOf(const Configuration::SettingsReading& reading);

/// The errors as they are shown.
[[nodiscard]] std::string errorsOf(const Configuration::SettingsReading& reading);
