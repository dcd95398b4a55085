#pragma once

#include <string>

/// The main MOF file of the DMTF's CIM schema, in the directory that the environment variable
/// CIM_SCHEMA_DIR names; empty where it is not set. Tests skip themselves then:
///
///     if (cimSchemaFile().empty())
///         GTEST_SKIP() << kNoCimSchema;
[[nodiscard]] std::string cimSchemaFile();

constexpr const char* kNoCimSchema = "CIM_SCHEMA_DIR is not set";
