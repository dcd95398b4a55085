#pragma once

#include <iosfwd>
#include <memory>
#include <string_view>
#include <vector>

#include "Platform/Soap/SOAPQName.h"
#include "Platform/Util/Export.h"
#include "Platform/Util/TSKReferenceCount.h"
#include "Platform/Util/TSKSmrPtr.h"
#include "Platform/Util/TSKString.h"

/// An element of an XML tree: a name, attributes and child elements. Children and attributes keep
/// the order in which they were added.
///
/// An element may be the child of several parents, and is then printed below each; it must not
/// become its own descendant. A tree is printed and destroyed recursively: it may be as deep as the
/// stack allows, some ten thousand levels on an ordinary thread.
///
/// Thread safety: a tree belongs to one thread while it is changed; it may be read and printed by
/// several at once.
class TESK_PLATFORM_EXPORT SOAPElement final : public TSKReferenceCount {
  public:
    /// A detached element without attributes and children.
    /// Errors: a null `name` throws TSKNullPointerException.
    [[nodiscard]] static TSKSmrPtr<SOAPElement> makeElement(const TSKSmrPtr<SOAPQName>& name);

    ~SOAPElement() override;

    static void* operator new(std::size_t size);
    static void operator delete(void* memory) noexcept;

    /// The element's name, shared, never null.
    [[nodiscard]] const TSKSmrPtr<SOAPQName>& getQname() const noexcept { return name_; }

    /// Appends an attribute. The name is taken as it is now. The value is a zero-terminated text,
    /// which is escaped when it is printed; null is the empty text. Nothing checks for an attribute
    /// of the same name.
    /// Errors: a null `name` throws TSKNullPointerException, std::bad_alloc; the element is
    /// unchanged then.
    void addAttribute(const TSKSmrPtr<SOAPQName>& name, const char* value);

    /// Appends `child`, which is shared from then on, after the existing children.
    /// Errors: a null `child` throws TSKNullPointerException, std::bad_alloc; the element is
    /// unchanged then.
    void addChildElement(TSKSmrPtr<SOAPElement>& child);

    /// Prints the tree as XML text: two spaces a level, a newline after every tag, `<a/>` for an
    /// element without children. Writes no XML declaration and no namespace declarations but those
    /// that were added as attributes. In attribute values `&`, `<`, `>`, `"`, tab, newline and
    /// carriage return are escaped, everything else is written as it is.
    ///
    /// Elements deeper than `depth` levels below this one are left out: 0 prints this element
    /// alone, the largest unsigned long the whole tree.
    ///
    /// Errors: those of the stream, which are the stream's to tell.
    void printXML(std::ostream& stream, unsigned long depth) const;

  private:
    class Printer;

    explicit SOAPElement(const TSKSmrPtr<SOAPQName>& name) noexcept : name_(name) {}

    // A text that grows at its end. Attributes of a schema mostly fit into the element itself.
    class Text {
      public:
        Text() noexcept = default;
        Text(const Text&) = delete;
        Text& operator=(const Text&) = delete;
        ~Text() = default;

        [[nodiscard]] std::string_view view() const noexcept { return {begin(), length_}; }

        /// Appends `length` bytes of no particular value and returns where they stand.
        /// Errors: std::bad_alloc; the text is as it was then.
        [[nodiscard]] char* extend(unsigned long length);

      private:
        static constexpr unsigned long kInPlace = 72;

        [[nodiscard]] const char* begin() const noexcept {
            return large_ ? large_.get() : inPlace_;
        }

        unsigned long length_ = 0;
        unsigned long capacity_ = kInPlace;
        std::unique_ptr<char[]> large_;
        char inPlace_[kInPlace];
    };

    TSKSmrPtr<SOAPQName> name_;
    // The attributes as they are printed: one text takes a quarter of the memory that names and
    // values of their own would take, and printing copies it (Benchmarks, ElementTreeBenchmark).
    Text attributes_;
    // Most elements of a schema have one child, which then needs no array.
    TSKSmrPtr<SOAPElement> firstChild_;
    std::vector<TSKSmrPtr<SOAPElement>> furtherChildren_;
};
