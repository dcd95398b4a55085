#pragma once

#include <string>

/// What is wrong with a text by the grammar of Prometheus' text format, a line each; empty if
/// nothing is: lines of HELP and TYPE before the samples of each metric, its samples in one place,
/// names and labels of the right characters, numbers, histograms whose buckets do not fall and end
/// with +Inf.
[[nodiscard]] std::string faultsOfMetrics(const std::string& text);

/// The value of a sample, such as "tesk_classes{namespace=\"root/cimv2\"}"; "none" without it.
[[nodiscard]] std::string sampleOf(const std::string& text, const std::string& name);
