// The benchmark's cases: each has a name of regular parts, and makes its subject when it runs.
#pragma once

#include <functional>
#include <string>

#include "measure.h"
#include "pictures.h"

namespace lumora::bench {

// Another way to run the same work, reported beside the first one as x_<name> and ms_<name>.
struct SecondColumn {
  const char* name = nullptr;  // null: there is none
  Round round;
  bool onlyIfAllocating = false;  // no column for work that asks the host for no memory
};

struct Subject {
  Round round;
  double pixels = 0;  // 0: no pixels per second
  SecondColumn second = {};
};
using MakeSubject = std::function<Subject()>;

// Which cases are registered: the quick ones, or all.
void registerAllCases(bool all);

void addCase(const std::string& name, bool quick, MakeSubject make);

// What runs on a picture of ours in place, against the limit of that picture.
using PictureWork = std::function<std::uint32_t()>;
Round pictureRound(const std::shared_ptr<TestPicture>& picture, PictureWork work);

// The families of cases.
void addModeCases();
void addStepCases();
void addLutCases();
void addPeerCases();

}  // namespace lumora::bench
