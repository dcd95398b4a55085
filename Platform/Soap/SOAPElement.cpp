#include "Platform/Soap/SOAPElement.h"

#include <algorithm>
#include <cstring>
#include <ostream>
#include <string_view>

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

    void writeBlanks(unsigned long count) {
        constexpr std::string_view kBlanks = "                                ";
        for (; count > kBlanks.size(); count -= kBlanks.size())
            write(kBlanks);
        write(kBlanks.substr(0, count));
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

std::string_view escapeFor(char character) noexcept {
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

void writeEscaped(BufferedOutput& output, std::string_view text) {
    const char* written = text.data();
    const char* const end = text.data() + text.size();
    for (const char* next = written; next != end; ++next) {
        const std::string_view escape = escapeFor(*next);
        if (escape.empty())
            continue;
        output.write({written, next});
        output.write(escape);
        written = next + 1;
    }
    output.write({written, end});
}

void writeName(BufferedOutput& output, const SOAPQName& name) {
    const TSKSmrPtr<std::string>& prefix = name.getPrefix();
    if (prefix && !prefix->empty()) {
        output.write(*prefix);
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
        output_.writeBlanks(2 * level);
        output_.write("<");
        writeName(output_, *element.name_);
        for (const Attribute& attribute : element.attributes_)
            printAttribute(attribute);
        if (element.children_.empty() || level == depth_) {
            output_.write("/>\n");
            return;
        }
        output_.write(">\n");
        for (const TSKSmrPtr<SOAPElement>& child : element.children_)
            printElement(*child, level + 1);
        output_.writeBlanks(2 * level);
        output_.write("</");
        writeName(output_, *element.name_);
        output_.write(">\n");
    }

    void printAttribute(const Attribute& attribute) {
        output_.write(" ");
        writeName(output_, *attribute.name);
        output_.write("=\"");
        writeEscaped(output_, attribute.value);
        output_.write("\"");
    }

    BufferedOutput output_;
    unsigned long depth_;
};

SOAPElement::~SOAPElement() = default;

TSKSmrPtr<SOAPElement> SOAPElement::makeElement(TSKSmrPtr<SOAPQName> name) {
    if (!name)
        TSKNullPointerException::raise("SOAPElement::makeElement");
    return TSKSmrPtr<SOAPElement>(new SOAPElement(std::move(name)));
}

void SOAPElement::addAttribute(TSKSmrPtr<SOAPQName> name, TSKString value) {
    if (!name)
        TSKNullPointerException::raise("SOAPElement::addAttribute");
    attributes_.push_back({.name = std::move(name), .value = std::move(value)});
}

void SOAPElement::addChildElement(TSKSmrPtr<SOAPElement> child) {
    if (!child)
        TSKNullPointerException::raise("SOAPElement::addChildElement");
    children_.push_back(std::move(child));
}

void SOAPElement::printXML(std::ostream& stream, unsigned long depth) const {
    Printer(stream, depth).print(*this);
}
