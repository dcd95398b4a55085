#pragma once

#include <string>

/// Whether a document that was exported is all there.
inline bool isComplete(const std::string& document) {
    return document.starts_with("<?xml") &&
           (document.ends_with("</wsdl:definitions>\n") ||
            document.ends_with("</wsdl:definitions>") || document.ends_with("</xs:schema>\n") ||
            document.ends_with("</xs:schema>"));
}
