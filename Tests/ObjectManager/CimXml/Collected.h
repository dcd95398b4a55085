#pragma once

#include <string>
#include <vector>

#include "ObjectManager/CimXml/ClassCollection.h"
#include "ObjectManager/CimXml/ResponseReader.h"
#include "Tests/ObjectManager/CimXml/Messages.h"
#include "Tests/ObjectManager/Mof/DeclarationText.h"

/// Qualifiers and classes as a server sends them, from "http://host:5988: root/test".
class Collected {
  public:
    explicit Collected(const std::string& qualifiers = "", const CimXml::Limits& limits = {})
        : limits_(limits) {
        read("EnumerateQualifiers", qualifiers,
             [this](const CimXml::Element& element) { collection_.addQualifier(element); });
    }

    Collected& classes(const std::string& classes) {
        read("EnumerateClasses", classes,
             [this](const CimXml::Element& element) { collection_.addClass(element); });
        return *this;
    }

    /// The declarations, one line each, and the diagnostics.
    [[nodiscard]] std::string text(const std::vector<std::string>& patterns = {}) const {
        const Mof::Compilation compilation = collection_.declarations(patterns);
        return textOf(compilation) + diagnosticsOf(compilation);
    }

    [[nodiscard]] const CimXml::ClassCollection& collection() const { return collection_; }

  private:
    void read(const std::string& operation, const std::string& results,
              const CimXml::ResponseReader::OnResult& onResult) const {
        CimXml::ResponseReader reader(operation, limits_, onResult);
        reader.read(responseTo(operation, results));
        reader.finish();
    }

    const CimXml::Limits limits_;
    CimXml::ClassCollection collection_{"http://host:5988: root/test", limits_};
};

/// A qualifier of a text.
inline std::string qualifier(const std::string& name, const std::string& value,
                             const std::string& attributes = "") {
    return "<QUALIFIER NAME=\"" + name + "\" TYPE=\"string\" " + attributes + "><VALUE>" + value +
           "</VALUE></QUALIFIER>";
}

/// A property of a text.
inline std::string property(const std::string& name, const std::string& content,
                            const std::string& attributes = "") {
    return "<PROPERTY NAME=\"" + name + "\" TYPE=\"string\" " + attributes + ">" + content +
           "</PROPERTY>";
}

inline std::string cimClass(const std::string& name, const std::string& superclass,
                            const std::string& content) {
    return "<CLASS NAME=\"" + name + "\"" +
           (superclass.empty() ? "" : " SUPERCLASS=\"" + superclass + "\"") + ">" + content +
           "</CLASS>";
}

/// Declarations of the qualifiers Note, which is passed on, and Mine, which is not.
inline constexpr const char* kNoteAndMine =
    "<QUALIFIER.DECLARATION NAME=\"Note\" TYPE=\"string\"/>"
    "<QUALIFIER.DECLARATION NAME=\"Mine\" TYPE=\"string\" TOSUBCLASS=\"false\"/>";

/// The lines of the two in the declarations.
inline constexpr const char* kNoteAndMineText =
    "qualifier string Note scopes 127\nqualifier string Mine scopes 127 Restricted\n";
