#pragma once

#include <libxml/tree.h>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace Xml {

/// A text as an XML parser with namespaces reads it. Nothing is fetched from outside, and entities
/// that the text declares itself count as undeclared.
///
/// Thread safety: belongs to one thread; several may be read at once.
class Document {
  public:
    /// `text` may be gone afterwards.
    explicit Document(std::string_view text);

    /// Why the text is not well-formed: the first fault, with line and column; nothing when it is.
    [[nodiscard]] const std::optional<std::string>& fault() const noexcept { return fault_; }

    /// The outermost element; null when the text is not well-formed.
    [[nodiscard]] const xmlNode* root() const noexcept;

  private:
    struct Delete {
        void operator()(xmlDoc* document) const noexcept { xmlFreeDoc(document); }
    };

    std::unique_ptr<xmlDoc, Delete> document_;
    std::optional<std::string> fault_;
};

// What of an element is looked at, as plain texts.

[[nodiscard]] bool isElement(const xmlNode& node) noexcept;
[[nodiscard]] std::string_view localName(const xmlNode& element) noexcept;
/// Empty for an attribute that is not there.
[[nodiscard]] std::string attribute(const xmlNode& element, const char* name);

}  // namespace Xml
