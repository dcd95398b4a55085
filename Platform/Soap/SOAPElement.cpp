#include "Platform/Soap/SOAPElement.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <ostream>
#include <string_view>

#include "Platform/Internal/TSKObjectPool.h"

namespace {

// Gathers small pieces of text, so that the stream is called once a few kilobytes.
class BufferedOutput {
  public:
    explicit BufferedOutput(std::ostream& stream) noexcept : stream_(stream) {}

    void write(std::string_view text) {
        if (text.size() > kCapacity - used_) {
            flush();
            if (text.size() > kCapacity) {
                stream_.write(text.data(), static_cast<std::streamsize>(text.size()));
                return;
            }
        }
        std::memcpy(buffer_ + used_, text.data(), text.size());
        used_ += text.size();
    }

    void writeSpaces(unsigned long count) {
        constexpr std::string_view kSpaces = "                                ";
        for (; count > kSpaces.size(); count -= kSpaces.size())
            write(kSpaces);
        write(kSpaces.substr(0, count));
    }

    void flush() {
        stream_.write(buffer_, static_cast<std::streamsize>(used_));
        used_ = 0;
    }

  private:
    static constexpr std::size_t kCapacity = 8192;

    std::ostream& stream_;
    std::size_t used_ = 0;
    char buffer_[kCapacity];
};

constexpr std::string_view escapeFor(char character) noexcept {
    switch (character) {
        case '&':
            return "&amp;";
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        case '"':
            return "&quot;";
        case '\t':
            return "&#9;";
        case '\n':
            return "&#10;";
        case '\r':
            return "&#13;";
        default:
            return {};
    }
}

// By character: how much longer its escape is than itself.
constexpr std::array<unsigned char, 256> kEscapeGrowth = [] {
    std::array<unsigned char, 256> growth{};
    for (const char character : {'&', '<', '>', '"', '\t', '\n', '\r'})
        growth[static_cast<unsigned char>(character)] =
            static_cast<unsigned char>(escapeFor(character).size() - 1);
    return growth;
}();

// A value and how much longer it is when it is escaped, found in one pass.
struct MeasuredText {
    std::string_view text;
    unsigned long growth;
};

MeasuredText measured(const char* value) noexcept {
    unsigned long length = 0;
    unsigned long growth = 0;
    if (value != nullptr) {
        for (; value[length] != '\0'; ++length)
            growth += kEscapeGrowth[static_cast<unsigned char>(value[length])];
    }
    return {.text = {value, length}, .growth = growth};
}

// These write to a place that is large enough and return the end of what they wrote.

char* put(char* target, std::string_view text) noexcept {
    return std::copy(text.begin(), text.end(), target);
}

char* putEscaped(char* target, std::string_view text) noexcept {
    for (const char character : text) {
        const std::string_view escape = escapeFor(character);
        if (escape.empty())
            *target++ = character;
        else
            target = put(target, escape);
    }
    return target;
}

std::string_view prefixOf(const SOAPQName& name) noexcept {
    const TSKSmrPtr<std::string>& prefix = name.getPrefix();
    return prefix ? std::string_view(*prefix) : std::string_view();
}

void writeName(BufferedOutput& output, const SOAPQName& name) {
    const std::string_view prefix = prefixOf(name);
    if (!prefix.empty()) {
        output.write(prefix);
        output.write(":");
    }
    output.write(name.getLocalName());
}

}  // namespace

// Prints one tree.
class SOAPElement::Printer {
  public:
    Printer(std::ostream& stream, unsigned long depth) noexcept : output_(stream), depth_(depth) {}

    void print(const SOAPElement& root) {
        printElement(root, 0);
        output_.flush();
    }

  private:
    void printElement(const SOAPElement& element, unsigned long level) {
        output_.writeSpaces(2 * level);
        output_.write("<");
        writeName(output_, *element.name_);
        output_.write(element.attributes_.view());
        if (!element.firstChild_ || level == depth_) {
            output_.write("/>\n");
            return;
        }
        output_.write(">\n");
        printElement(*element.firstChild_, level + 1);
        for (const TSKSmrPtr<SOAPElement>& child : element.furtherChildren_)
            printElement(*child, level + 1);
        output_.writeSpaces(2 * level);
        output_.write("</");
        writeName(output_, *element.name_);
        output_.write(">\n");
    }

    BufferedOutput output_;
    unsigned long depth_;
};

char* SOAPElement::Text::extend(unsigned long length) {
    if (length > capacity_ - length_) {
        const unsigned long capacity = std::max(length_ + length, 2 * capacity_);
        std::unique_ptr<char[]> larger(new char[capacity]);
        std::memcpy(larger.get(), begin(), length_);
        large_ = std::move(larger);
        capacity_ = capacity;
    }
    char* const end = (large_ ? large_.get() : inPlace_) + length_;
    length_ += length;
    return end;
}

SOAPElement::~SOAPElement() = default;

void* SOAPElement::operator new(std::size_t /*size*/) {
    return TSKObjectPool<SOAPElement>::allocate();
}

void SOAPElement::operator delete(void* memory) noexcept {
    TSKObjectPool<SOAPElement>::release(memory);
}

TSKSmrPtr<SOAPElement> SOAPElement::makeElement(const TSKSmrPtr<SOAPQName>& name) {
    if (!name)
        TSKNullPointerException::raise("SOAPElement::makeElement");
    return TSKSmrPtr<SOAPElement>(new SOAPElement(name));
}

void SOAPElement::addAttribute(const TSKSmrPtr<SOAPQName>& name, const char* value) {
    const std::string_view prefix = prefixOf(*name);
    const std::size_t prefixLength = prefix.empty() ? 0 : prefix.size() + 1;
    const std::string_view localName = name->getLocalName();
    const auto [text, growth] = measured(value);

    char* target = attributes_.extend(prefixLength + localName.size() + text.size() + growth +
                                      (sizeof " =\"\"" - 1));
    *target++ = ' ';
    if (!prefix.empty()) {
        target = put(target, prefix);
        *target++ = ':';
    }
    target = put(target, localName);
    *target++ = '=';
    *target++ = '"';
    target = growth == 0 ? put(target, text) : putEscaped(target, text);
    *target = '"';
}

void SOAPElement::addChildElement(TSKSmrPtr<SOAPElement>& child) {
    if (!child)
        TSKNullPointerException::raise("SOAPElement::addChildElement");
    if (!firstChild_)
        firstChild_ = child;
    else
        furtherChildren_.push_back(child);
}

void SOAPElement::printXML(std::ostream& stream, unsigned long depth) const {
    Printer(stream, depth).print(*this);
}
