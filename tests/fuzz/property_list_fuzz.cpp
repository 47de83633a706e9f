// Property lists, and the scheduler's jobs that they describe.
#include "platform/PropertyList.h"
#include "platform/linux/jobs/Job.h"
#include "tests/fuzz/FuzzInput.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace dormel;
  const std::string_view xml = fuzz::text(data, size);
  if (const auto value = readXmlPropertyList(xml)) {
    const auto written = writeXmlPropertyList(*value);
    fuzz::require(written.has_value(), "what was read can be written");
    const auto again = readXmlPropertyList(*written);
    fuzz::require(again.has_value(), "what was written can be read");
    fuzz::require(writeXmlPropertyList(*again) == written, "and is the same");
  }
  const auto read = jobs::parseJob(xml, "/home/user/job.plist");
  if (const auto* job = std::get_if<jobs::Job>(&read)) {
    fuzz::require(jobs::isJobLabel(job->label), "the label can name files");
    fuzz::require(!job->arguments.empty() && job->program().starts_with('/'), "the program is absolute");
    fuzz::require(!job->start || (job->start->hour >= 0 && job->start->hour < 24 && job->start->minute >= 0 &&
                                  job->start->minute < 60),
                  "the start is a time of day");
  }
  return 0;
}
