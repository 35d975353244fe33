// What holds where a file is no file, never ends, or promises more than a machine has: nothing
// hangs, and refusing costs next to nothing.
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "pictures.h"

namespace lumora::test {
namespace {

namespace fs = std::filesystem;
using vips::VImage;

struct Cost {
  int exitCode = -1;
  std::string error;
  double processorSeconds = 0;
  double megabytes = 0;
};

class LimitsTest : public PictureTest {
 protected:
  // Of the shell's words and of all that they start.
  Cost measure(const std::string& words) const {
    const std::string command = "cd '" + pathOf("") + "' && { " + words + "\n} 2>'error.log'";
    const pid_t child = ::fork();
    if (child == 0) {
      ::execl("/bin/bash", "bash", "-c", command.c_str(), nullptr);
      ::_exit(127);
    }
    int status = 0;
    rusage usage{};
    EXPECT_EQ(::wait4(child, &status, 0, &usage), child);
    const Bytes error = readFile("error.log");
    fs::remove(pathOf("error.log"));
    const auto seconds = [](const timeval& time) {
      return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1,
            {error.begin(), error.end()},
            seconds(usage.ru_utime) + seconds(usage.ru_stime),
            static_cast<double>(usage.ru_maxrss) / 1024};
  }

  void refuseCheaply(const std::string& words, const std::string& said) const {
    const Cost cost = measure(words);
    EXPECT_EQ(cost.exitCode, 1) << words;
    EXPECT_TRUE(says(cost.error, said)) << words;
    // For the page on reliability.
    std::printf("%.2f s %3.0f MB: %s\n", cost.processorSeconds, cost.megabytes, words.c_str());
#ifndef LUMORA_REDUCED_TESTS
    EXPECT_LT(cost.processorSeconds, 1) << words;
    EXPECT_LT(cost.megabytes, 200) << words;
#endif
  }
};

TEST_F(LimitsTest, PipesAndDevicesAreReadLikeFiles) {
  for (const std::string format : {"jpg", "png", "webp", "tif", "gif", "avif"}) {
    SCOPED_TRACE(format);
    const std::string in = "in." + format;
    writePicture(in);
    succeed("apply --force -l heibai " + in + " expected.png");
    const Bytes expected = readFile("expected.png");
    for (const std::string& way :
         {"lumora apply -l heibai --to png - out.png < " + in,
          "cat " + in + " | lumora apply -l heibai --to png - out.png",
          "cat " + in + " | lumora apply -l heibai --to png /dev/stdin out.png",
          "lumora apply -l heibai --jobs 2 <(cat " + in + ") out.png",
          "mkfifo p; (sleep 0.3; cat " + in + " > p) & lumora apply -l heibai p out.png; rm p"}) {
      const Cost cost = measure(way);
      EXPECT_EQ(cost.exitCode, 0) << way << cost.error;
      EXPECT_EQ(readFile("out.png"), expected) << way;
      fs::remove(pathOf("out.png"));
    }
  }
}

TEST_F(LimitsTest, NothingHangsOnWhatNeverEnds) {
  writePicture("in.png");
  shell("mkfifo silent");
  refuseCheaply("lumora apply -l heibai /dev/zero o.png",
                "/dev/zero: is not a picture in a format");
  refuseCheaply("lumora apply -l heibai - o.png < /dev/urandom",
                "standard input: is not a picture");
  refuseCheaply("lumora apply -l heibai /dev/null o.png", "/dev/null: is empty");
  refuseCheaply(": | lumora apply -l heibai - o.png", "standard input: is empty");
  refuseCheaply("lumora apply -l heibai - o.png <&-", "standard input: Bad file descriptor");
  refuseCheaply("lumora apply -l heibai - o.png < .", "standard input: is a folder");
  refuseCheaply("{ cat in.png; yes; } | lumora apply -l heibai - o.png",
                "is longer than 128 MiB, the most that is read of a pipe");
  const std::string masked = "lumora apply -l colour-fix --colour '#ff0000' in.png o.png --mask ";
  refuseCheaply(masked + "/dev/zero", "/dev/zero: is not a picture");
  refuseCheaply(masked + "silent", "silent: is a pipe that nobody has written to for 5 seconds");
  // A batch goes on.
  refuseCheaply("lumora apply -l heibai --jobs 2 -d out silent in.png", "silent: is a pipe that");
  EXPECT_EQ(listFolder("out"), Words{"in.png"});
  shell("printf '' > silent & lumora apply -l heibai silent o.png 2>&1 | grep 'silent: is empty'");
}

TEST_F(LimitsTest, AFileThatMayNotBeReadIsSaidToBe) {
  writePicture("in.png");
  fs::permissions(pathOf("in.png"), fs::perms::none);
  fs::permissions(pathOf("."), fs::perms::all);
  const bool isRoot = ::geteuid() == 0;
  const bool canChange = runShell("setpriv --reuid=65534 --clear-groups test -x .").exitCode == 0;
  if (isRoot && !canChange) GTEST_SKIP() << "nobody is not to be had";
  const std::string user = isRoot ? "setpriv --reuid=65534 --clear-groups " : "";
  EXPECT_TRUE(says(runShell(user + "lumora apply -l heibai in.png o.png").error,
                   "in.png: Permission denied"));
}

std::uint32_t checksumOf(const Bytes& bytes, std::size_t begin, std::size_t end) {
  std::uint32_t sum = ~0u;
  for (std::size_t i = begin; i < end; ++i) {
    sum ^= bytes[i];
    for (int bit = 0; bit < 8; ++bit) sum = sum >> 1 ^ (sum & 1 ? 0xEDB88320u : 0);
  }
  return ~sum;
}

Bytes bytesOf(unsigned number, unsigned count, bool isBigEndian) {
  Bytes bytes;
  for (unsigned i = 0; i < count; ++i) {
    const unsigned shift = 8 * (isBigEndian ? count - 1 - i : i);
    bytes.push_back(static_cast<std::uint8_t>(number >> shift));
  }
  return bytes;
}

// The header says another size; everything else stays.
Bytes withSize(Bytes file, const std::string& format, unsigned oldSide, unsigned newSide) {
  const bool isBigEndian = format != "tif";
  const unsigned count = format == "png" || format == "avif" || format == "heic" ? 4 : 2;
  const Bytes before = bytesOf(oldSide, count, isBigEndian);
  const Bytes after = bytesOf(newSide, count, isBigEndian);
  // A TIFF file has its directory behind the pixels.
  const auto found = isBigEndian
                         ? std::search(file.begin(), file.end(), before.begin(), before.end())
                         : std::find_end(file.begin(), file.end(), before.begin(), before.end());
  EXPECT_NE(found, file.end()) << format;
  std::copy(after.begin(), after.end(), found);
  if (format == "png") {
    // Behind the signature stand length, type and 13 bytes of the first chunk.
    const Bytes sum = bytesOf(checksumOf(file, 12, 29), 4, true);
    std::copy(sum.begin(), sum.end(), file.begin() + 29);
  }
  return file;
}

TEST_F(LimitsTest, HeadersThatPromiseTooMuchAreRefusedBeforeAnythingIsDecoded) {
  writePicture("ok.png");
  VImage picture = colourfulPicture(600, 450).copy();
  picture.set(VIPS_META_ORIENTATION, 6);
  for (const std::string format : {"jpg", "png", "tif", "avif", "heic"}) {
    SCOPED_TRACE(format);
    const std::string name = "in." + format;
    writePicture(name, picture);
    Bytes file = withSize(readFile(name), format, 600, 40000);
    file = withSize(file, format, 450, 40000);
    writeFile(name, file);
    // libheif has a limit of its own.
    const std::string said =
        name + (format == "avif" || format == "heic"
                    ? ": cannot be read, it seems damaged: heif: Memory allocation error: Security "
                      "limit exceeded"
                    : ": is 40000 x 40000 pixels; ");
    refuseCheaply("lumora apply -l heibai " + name + " o.png", said);
    refuseCheaply("lumora apply -l colour-fix --colour '#ff0000' --mask " + name + " ok.png o.png",
                  said);
    if (format == "png") refuse(1, "pack create --out p.dat --slot speck=" + name, said);
  }
}

TEST_F(LimitsTest, ACodedPictureLargerThanItsHeaderSaysIsRefused) {
  for (const auto& [format, side] : {std::pair("avif", 8000), {"heic", 6000}}) {
    const std::string name = std::string("in.") + format;
    VImage::black(side, side, VImage::option()->set("bands", 3))
        .heifsave(pathOf(name).c_str(),
                  VImage::option()
                      ->set("effort", 0)
                      ->set("compression", name == "in.avif" ? VIPS_FOREIGN_HEIF_COMPRESSION_AV1
                                                             : VIPS_FOREIGN_HEIF_COMPRESSION_HEVC));
    Bytes file = withSize(readFile(name), format, side, 200);
    file = withSize(file, format, side, 200);
    writeFile(name, file);
    refuseCheaply("lumora apply -l heibai " + name + " o.png",
                  name + ": cannot be read, it seems damaged: ");
    refuseCheaply("cat " + name + " | lumora apply -l heibai - o.png",
                  "standard input: cannot be read, it seems damaged: ");
  }
}

TEST_F(LimitsTest, PicturesInFlightStayWithinTheirMemory) {
  shell("mkdir many");
  for (const char* name : {"p.jpg[interlace]", "p.png", "p.webp"}) {
    writePicture(std::string("many/") + name, 3000, 2000);
  }
  shell("cd many; for i in 1 2 3; do for s in jpg png webp; do cp p.$s $i.$s; done; done");
  const std::string batch = "lumora apply -l moran -r -j 6 -d out --force many --memory ";
  // Plenty, two or three at a time, and one at a time because not even one fits.
  const Cost plenty = measure(batch + "4G"), some = measure(batch + "300M"),
             alone = measure(batch + "1M");
  for (const Cost& cost : {plenty, some, alone}) EXPECT_EQ(cost.exitCode, 0) << cost.error;
  std::printf("%.0f MB, %.0f MB of 300, %.0f MB alone\n", plenty.megabytes, some.megabytes,
              alone.megabytes);
#ifndef LUMORA_REDUCED_TESTS
  EXPECT_GT(plenty.megabytes, 330);
  EXPECT_LT(some.megabytes, 300);
#endif
  EXPECT_LT(some.megabytes, plenty.megabytes);
  EXPECT_LT(alone.megabytes, some.megabytes);
}

TEST_F(LimitsTest, TextsThatUnpackToGigabytesAreRefused) {
  const std::string content = "a keyword";
  for (const auto& [type, count, isRefused] :
       {std::tuple(std::string("zTXt"), 9, true), {"zTXt", 8, false}, {"tEXt", 100, false}}) {
    writePicture("in.png");
    Bytes file = readFile("in.png");
    for (int i = 0; i < count; ++i) {
      Bytes chunk = bytesOf(static_cast<unsigned>(content.size() + 1), 4, true);
      for (const char c : type + content + '\0') chunk.push_back(static_cast<std::uint8_t>(c));
      const Bytes sum = bytesOf(checksumOf(chunk, 4, chunk.size()), 4, true);
      chunk.insert(chunk.end(), sum.begin(), sum.end());
      file.insert(file.begin() + 33, chunk.begin(), chunk.end());
    }
    writeFile("in.png", file);
    const std::string error = run("apply --force -l heibai in.png out.png").error;
    EXPECT_EQ(error, isRefused ? "lumora: in.png: has more than 8 compressed texts\n" : "") << type;
  }
}

}  // namespace
}  // namespace lumora::test
