#include "Tests/Support/CimSchema.h"

#include <cstdlib>

std::string cimSchemaFile() {
    const char* const directory = std::getenv("CIM_SCHEMA_DIR");
    if (directory == nullptr || *directory == '\0')
        return {};
    return std::string(directory) + "/cim_schema_2.41.0.mof";
}
