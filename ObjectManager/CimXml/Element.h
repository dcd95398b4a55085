#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Elements of responses with all that is in them, each in one piece of memory: thousands of equal
// ones (what classes inherit) are found by comparing bytes, and are kept once.

namespace CimXml {

/// The elements that are read (DSP0201).
enum class Tag : std::uint8_t {
    kUnknown,  ///< any other; its name is its attribute kName
    kCim,
    kClass,
    kClassName,
    kError,
    kInstanceName,
    kKeyBinding,
    kKeyValue,
    kMessage,
    kMethod,
    kMethodResponse,
    kParameter,
    kParameterArray,
    kParameterReference,
    kParameterReferenceArray,
    kProperty,
    kPropertyArray,
    kPropertyReference,
    kQualifier,
    kQualifierDeclaration,
    kReturnValue,
    kScope,
    kSimpleResponse,
    kValue,
    kValueArray,
    kValueNull,
    kValueReference,
};

/// The attributes that are read.
enum class Attribute : std::uint8_t {
    kArraySize,
    kAssociation,
    kClass,
    kCode,
    kDescription,
    kEmbeddedObject,
    kId,
    kIndication,
    kIsArray,
    kMethod,
    kName,
    kOverridable,
    kParameter,
    kPropagated,
    kProperty,
    kProtocolVersion,
    kReference,
    kReferenceClass,
    kSuperclass,
    kToSubclass,
    kTranslatable,
    kType,
};

// What the names in responses stand for. Errors: std::bad_alloc, at the first call of the process.
[[nodiscard]] Tag tagOf(std::string_view name);
[[nodiscard]] std::optional<Attribute> attributeOf(std::string_view name);

/// Whether the content of such elements is text; that of others is elements.
[[nodiscard]] constexpr bool holdsText(Tag tag) noexcept {
    return tag == Tag::kValue || tag == Tag::kKeyValue;
}

class ElementList;

/// An element that was recorded. A view: the bytes must live as long.
///
/// Thread safety: immutable, may be used by several threads at once.
class Element {
  public:
    /// `body` is the body() of an element.
    explicit Element(std::string_view body, bool isPropagated = false) noexcept;

    [[nodiscard]] Tag tag() const noexcept { return tag_; }

    /// The attribute PROPAGATED. Not part of body(): what a class inherits differs in it from what
    /// its superclass declares.
    [[nodiscard]] bool isPropagated() const noexcept { return isPropagated_; }

    [[nodiscard]] std::optional<std::string_view> attribute(Attribute attribute) const noexcept;

    /// Whether an attribute is there and true.
    [[nodiscard]] bool isTrue(Attribute name) const noexcept;

    [[nodiscard]] std::string_view text() const noexcept { return text_; }
    [[nodiscard]] ElementList children() const noexcept;

    /// The element as bytes; two with the same bytes are equal.
    [[nodiscard]] std::string_view body() const noexcept { return body_; }

    /// How many elements there are in it, itself included.
    [[nodiscard]] std::size_t count() const noexcept;

  private:
    std::string_view body_;
    std::string_view attributes_;
    std::string_view text_;
    std::string_view children_;
    Tag tag_;
    bool isPropagated_;
};

/// The children of an element, in their order.
///
/// Thread safety: immutable, may be used by several threads at once.
class ElementList {
  public:
    class Iterator {
      public:
        using difference_type = std::ptrdiff_t;
        using value_type = Element;

        Iterator() noexcept = default;
        explicit Iterator(std::string_view rest) noexcept : rest_(rest) {}

        [[nodiscard]] Element operator*() const noexcept;
        Iterator& operator++() noexcept;
        void operator++(int) noexcept { ++*this; }
        friend bool operator==(const Iterator& left, const Iterator& right) noexcept {
            return left.rest_.size() == right.rest_.size();
        }

      private:
        std::string_view rest_;
    };

    explicit ElementList(std::string_view bytes) noexcept : bytes_(bytes) {}

    [[nodiscard]] Iterator begin() const noexcept { return Iterator(bytes_); }
    [[nodiscard]] static Iterator end() noexcept { return {}; }

  private:
    std::string_view bytes_;
};

/// Records an element as a parser reports it: begin(), its attributes, texts, elements within,
/// end().
///
/// Thread safety: belongs to one thread.
class ElementRecorder {
  public:
    void begin(Tag tag);
    /// Before texts and elements within.
    void attribute(Attribute attribute, std::string_view value);
    /// Before elements within. Further texts are appended.
    void text(std::string_view text);
    void end();

    [[nodiscard]] bool isOpen() const noexcept { return !open_.empty(); }
    [[nodiscard]] std::size_t size() const noexcept { return bytes_.size(); }

    /// The element, when it is not open any more. Valid until the next begin().
    [[nodiscard]] Element element() const noexcept { return *ElementList::Iterator(bytes_); }

    /// Forgets the element that is there.
    void clear() noexcept { bytes_.clear(); }

  private:
    // Where in bytes_ an element that is not complete begins, and its text.
    struct Open {
        std::size_t start;
        std::size_t text = 0;  // 0 while attributes may come
        bool isTextOver = false;
    };

    void beginText(Open& open);
    void endText(Open& open);

    std::string bytes_;
    std::vector<Open> open_;
};

}  // namespace CimXml
