#pragma once

#include <string>

/// A response to an operation, with what is inside of IMETHODRESPONSE.
inline std::string responseWith(const std::string& operation, const std::string& content) {
    return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
           "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">\n<MESSAGE ID=\"1\" "
           "PROTOCOLVERSION=\"1.0\">\n"
           "<SIMPLERSP><IMETHODRESPONSE NAME=\"" +
           operation + "\">" + content + "</IMETHODRESPONSE></SIMPLERSP>\n</MESSAGE>\n</CIM>\n";
}

/// A response to an operation with results.
inline std::string responseTo(const std::string& operation, const std::string& results) {
    return responseWith(operation, "<IRETURNVALUE>" + results + "</IRETURNVALUE>");
}

inline std::string errorResponseTo(const std::string& operation, const std::string& code,
                                   const std::string& description) {
    return responseWith(operation,
                        "<ERROR CODE=\"" + code + "\" DESCRIPTION=\"" + description + "\"/>");
}
