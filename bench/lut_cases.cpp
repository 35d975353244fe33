// Tables of colours on pictures.
#include "cases.h"
#include "lut/interpolation.h"
#include "lut_table.h"

namespace lumora::bench {
namespace {

// lut/entries a side/format/size/t1
void addLutCase(int entries, Size size) {
  const std::string name = "lut/" + std::to_string(entries) + "/rgba/" + size.name() + "/t1";
  addCase(name, isTargetSize(size), [=] {
    const auto picture = std::make_shared<TestPicture>(kRgba, size);
    const auto table = std::make_shared<lut::Interpolation>(warmTable(entries));
    return Subject{pictureRound(picture,
                                [=] {
                                  table->apply(picture->data(), size.width, size.height,
                                               picture->stride, 16);
                                  return std::uint32_t{0};
                                }),
                   size.pixels()};
  });
}

}  // namespace

void addLutCases() {
  for (const Size size : kSizes) {
    for (const int entries : {17, 33, 65}) addLutCase(entries, size);
  }
}

}  // namespace lumora::bench
