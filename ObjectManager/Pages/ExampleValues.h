#pragma once

#include <string>
#include <string_view>

#include "ObjectManager/Pages/ClassRelations.h"

namespace Pages {

/// XML elements with values that instances of a class could have, for examples. Texts are escaped;
/// none has a line end or another control character, whatever a model says.
///
/// Thread safety: immutable, may be used by several threads at once.
class ExampleValues {
  public:
    /// `relations` must outlive this; `service` is the address that references name.
    ExampleValues(const ClassRelations& relations, std::string service);

    /// The value of a property or a parameter of `cimClass`, as the content of its element: a text
    /// on one line, or elements on lines of their own. One value for an array.
    [[nodiscard]] std::string valueOf(const Repository::CimClass& cimClass,
                                      const Repository::CimProperty& property, int indent) const;
    [[nodiscard]] std::string valueOf(const Repository::CimClass& cimClass,
                                      const Repository::CimParameter& parameter, int indent) const;

    /// The same as an argument for zeep, in Python. A property that is an array is a list;
    /// in the documents a parameter is a single element.
    [[nodiscard]] std::string pythonValueOf(const Repository::CimClass& cimClass,
                                            const Repository::CimProperty& property) const;
    [[nodiscard]] std::string pythonValueOf(const Repository::CimClass& cimClass,
                                            const Repository::CimParameter& parameter) const;

    /// The header block that names an instance of a class by its keys, or the namespace alone.
    [[nodiscard]] std::string selectorSet(const Repository::CimClass& cimClass, bool withKeys,
                                          int indent) const;

  private:
    template <typename Definition>
    [[nodiscard]] std::string value(const Repository::CimClass& cimClass,
                                    const Definition& definition, int indent, int depth) const;
    template <typename Definition>
    [[nodiscard]] std::string pythonValue(const Repository::CimClass& cimClass,
                                          const Definition& definition) const;
    [[nodiscard]] std::string selectors(const Repository::CimClass& cimClass, bool withKeys,
                                        int indent, int depth) const;
    [[nodiscard]] std::string reference(std::string_view className, int indent, int depth) const;

    const ClassRelations& relations_;
    std::string service_;
};

/// A text with U+FFFD for what XML does not allow, and for control characters.
[[nodiscard]] std::string plainText(std::string_view text);

/// A text in the content or in an attribute of XML, as plainText has it.
[[nodiscard]] std::string exampleText(std::string_view text);

}  // namespace Pages
