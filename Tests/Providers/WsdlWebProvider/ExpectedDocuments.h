#pragma once

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

#include "Tests/Support/ClassModel.h"

/// The documents that were worked out by hand, in the folder Expected.
[[nodiscard]] inline std::string expectedDocument(const std::string& name) {
    std::ifstream stream(EXPECTED_DIRECTORY "/" + name, std::ios::binary);
    if (!stream)
        throw std::runtime_error("cannot open " EXPECTED_DIRECTORY "/" + name);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// The class of Expected/OneClass.wsdl and .xsd.
[[nodiscard]] inline ModelClass classOne() {
    return ModelClass("TST_One")
        .qualifier("Description", "The first.")
        .property(ModelProperty("Id", "uint32").qualifier("Key"))
        .method(ModelMethod("Stop", "uint32"));
}
