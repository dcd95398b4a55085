#include <cstdio>
#include <gtest/gtest.h>
#include <memory>
#include <string>

#include "Platform/Util/TSKLog.h"
#include "Platform/Util/TSKStreamLogSink.h"

namespace {

std::string written(const TSKString& component, const TSKString& message,
                    TeskTraceLog::Severity severity) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::tmpfile(), &std::fclose);
    TSKStreamLogSink(file.get())
        .write({.component = component,
                .message = message,
                .severity = severity,
                .verbosity = TeskTraceLog::VerbosityNormal,
                .channel = TSKLog::CIMOMLOG});
    std::string text(static_cast<std::size_t>(std::ftell(file.get())), '\0');
    std::rewind(file.get());
    EXPECT_EQ(std::fread(text.data(), 1, text.size(), file.get()), text.size());
    return text;
}

// The line without its time and newline, both of which are checked to be there.
std::string withoutTime(const std::string& line) {
    const std::string shape = "dddd-dd-ddTdd:dd:dd.dddZ ";
    std::string time = line.substr(0, shape.size());
    for (char& character : time) {
        if (character >= '0' && character <= '9')
            character = 'd';
    }
    EXPECT_EQ(time, shape);
    EXPECT_EQ(line.find('\n'), line.size() - 1);
    return line.substr(shape.size(), line.size() - shape.size() - 1);
}

TEST(TSKStreamLogSink, WritesTimeSeverityComponentAndMessage) {
    EXPECT_EQ(withoutTime(written("Http", "started", TeskTraceLog::SeverityInformation)),
              "information Http: started");
    EXPECT_EQ(withoutTime(written("Http", "bad", TeskTraceLog::SeverityError)), "error Http: bad");
    EXPECT_EQ(withoutTime(written("Http", "odd", TeskTraceLog::SeverityWarning)),
              "warning Http: odd");
    EXPECT_EQ(withoutTime(written("Http", "", TeskTraceLog::SeverityTrace)), "trace Http: ");
}

TEST(TSKStreamLogSink, NoMessageCanForgeALine) {
    EXPECT_EQ(withoutTime(written("A\tB", TSKString("x\r\ny\0z\x1b[2J\x7f", 11),
                                  TeskTraceLog::SeverityError)),
              R"(error A\x09B: x\x0d\x0ay\x00z\x1b[2J\x7f)");
}

TEST(TSKStreamLogSink, KeepsTextInUtf8) {
    EXPECT_EQ(withoutTime(written("A",
                                  "gr\xc3\xbc\xc3\x9f"
                                  "e",
                                  TeskTraceLog::SeverityError)),
              "error A: gr\xc3\xbc\xc3\x9f"
              "e");
}

}  // namespace
