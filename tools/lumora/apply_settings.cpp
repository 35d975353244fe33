#include "apply_settings.h"

#include <algorithm>
#include <thread>

#include "errors.h"
#include "formats.h"
#include "memory_budget.h"
#include "shard.h"
#include "words.h"

namespace lumora::tool {
namespace {

int parseJobs(const std::string& value) {
  const int jobs = value == "auto" ? 0 : parseInteger(value, 0, 256);
  // One more than processors: the decoder's and encoder's own threads wait for one another.
  return jobs > 0 ? jobs : static_cast<int>(std::thread::hardware_concurrency()) + 1;
}

std::string parseFormat(const std::string& value) {
  const std::string suffix = text(value.starts_with('.') ? "" : ".", lowerCase(value));
  if (isWritableSuffix(suffix)) return suffix;
  throw UsageError(text("'", value, "' is not one of ", writableSuffixes()));
}

ProfileUse parseProfile(const std::string& value) {
  if (lowerCase(value) == "srgb") return ProfileUse::kToSrgb;
  if (lowerCase(value) == "keep") return ProfileUse::kKeep;
  throw UsageError(text("'", value, "' is not one of srgb, keep"));
}

std::string parseSuffix(const std::string& value) {
  if (value.find('/') == value.npos) return value;
  throw UsageError(text("'", value, "' is a part of file names and cannot hold '/'"));
}

std::string parseBackupSuffix(const std::string& value) {
  if (value.empty()) throw UsageError("the backup needs another name than the picture");
  return parseSuffix(value);
}

std::vector<const Mode*> parseLooks(const std::string& value) {
  std::vector<const Mode*> modes;
  for (const std::string& name : splitAtCommas(value)) {
    const Mode& mode = findMode(name);
    if (std::find(modes.begin(), modes.end(), &mode) != modes.end()) {
      throw UsageError(text(mode.name, " is named twice"));
    }
    modes.push_back(&mode);
  }
  return modes;
}

// --look of several looks in place of the one of other commands.
OptionGroup looksOptions(ApplySettings& s) {
  OptionGroup group = lookOptions(s.look);
  group.options.front() = {"look", 'l', "NAME,...",
                           "the look, by name or number; 'lumora looks' lists them. Of\n"
                           "several every picture gets a file for each: photo_fugu.jpg",
                           [&s](const std::string& v) { s.modes = parseLooks(v); }};
  return group;
}

// For runs over more pictures than one machine or one command line can take.
OptionGroup archiveOptions(ApplySettings& s) {
  return {"Many pictures, many machines",
          {{"files-from", 0, "LIST", "take the names in this file too, one a line; '-' reads them",
            keep(s.listFile)},
           {"null", '0', nullptr, "NULs divide the list's names, as 'find -print0' writes them",
            raise(s.isListNullSeparated)},
           {"shard", 0, "K/N",
            "do the K-th of N shares only, 1/N to N/N. They depend on the\n"
            "names alone: N machines with one list do everything once",
            [&s](const std::string& v) { s.plan.shard = parseShard(v); }},
           {"memory", 0, "SIZE",
            "work on no more pictures at a time than fit into about as much\n"
            "memory (800M, 2G); one that needs more is done alone",
            [&s](const std::string& v) { s.memory = parseMemory(v); }},
           {"json", 0, nullptr,
            "a line of JSON for every picture on standard output, with\n"
            "sizes, times, warnings and errors, and one for all together",
            raise(s.report.json)},
           {"dry-run", 0, nullptr, "only tell what would be done", raise(s.report.dryRun)}}};
}

}  // namespace

CommandLine applyCommandLine(ApplySettings& s) {
  static const std::string description = text(
      "Gives photographs a look. Reads ", readableFormats(),
      ", told by their\n"
      "content, of several pictures in a file the first. The result is upright, in sRGB (see\n"
      "--profile), with eight bits a channel, and keeps transparency, EXIF (with a new thumbnail,\n"
      "but in tif), XMP, IPTC (in jpg and tif) and comments (png to png). Left out is what shows\n"
      "the photograph as it was or may: maker notes, previews, Photoshop's and other programs'\n"
      "blocks.\n"
      "'-' is standard input or output. A picture that fails is reported and left out; an output\n"
      "file appears complete or not at all, also when Ctrl-C ends the run. Nothing that exists is\n"
      "replaced unless --force or --in-place asks for it. On a terminal a bar shows how far\n"
      "several pictures are.\n"
      "Exit codes: 0 all done, 1 some pictures failed, 4 of several pictures none was done.\n");
  return {
      "lumora apply --look NAME,... [options] IN OUT\n"
      "lumora apply --look NAME,... [options] --out-dir DIR IN...\n"
      "lumora apply --look NAME [options] --in-place IN...\n"
      "lumora apply --lut FILE [options] ...",
      description.c_str(),
      {looksOptions(s),
       {"Look of another program",
        {{"lut", 0, "FILE",
          "a table of colours in place of a look: a .cube file, 1D or\n"
          "3D, or a Hald picture; --strength 0 mixes it in by half",
          keep(s.lutFile)}}},
       modeOptions(s.look),
       {"Output",
        {{"to", 0, "FORMAT",
          "jpg, png, webp, tif, avif or heic; default: as the name says,\n"
          "and for standard output as the input is",
          [&s](const std::string& v) { s.plan.format = parseFormat(v); }},
         {"quality", 'q', "1..100", "of jpg, webp, avif and heic; default 92",
          [&s](const std::string& v) { s.quality = parseInteger(v, 1, 100); }},
         {"profile", 0, "srgb|keep",
          "what becomes of photographs in a wider colour space: sRGB,\n"
          "which the looks are made for (the default), or the same\n"
          "space, with the look on its raw values",
          [&s](const std::string& v) { s.profile = parseProfile(v); }},
         {"strip", 0, nullptr,
          "leave out all metadata that could hold a picture: of EXIF the\n"
          "short fields stay, and the profile; mosaic does so always",
          raise(s.strip)},
         forceOption(s.plan.force),
         {"skip-existing", 0, nullptr, "leave pictures out whose output exists",
          raise(s.plan.skipExisting)},
         {"in-place", 0, nullptr, "put the results where the pictures are", raise(s.plan.inPlace)},
         {"backup", 0, "SUFFIX",
          "with --in-place: keep every original beside its result, with\n"
          "SUFFIX behind its name (photo.jpg.orig: .orig)",
          [&s](const std::string& v) { s.plan.backupSuffix = parseBackupSuffix(v); }},
         {"verbose", 'v', nullptr, "show what is done and the library's log",
          raise(s.report.verbose)}}},
       {"Several pictures",
        {{"out-dir", 'd', "DIR", "write every picture into this folder, under its own name",
          keep(s.plan.outputFolder)},
         {"suffix", 0, "TEXT", "put TEXT behind the names (photo_TEXT.jpg: _TEXT)",
          [&s](const std::string& v) { s.plan.suffix = parseSuffix(v); }},
         {"recursive", 'r', nullptr,
          "take folders too: the pictures in them and in the folders\n"
          "below, which come to lie in the same folders below --out-dir",
          raise(s.plan.recursive)},
         {"jobs", 'j', "N",
          "work on N pictures at a time, each in one thread, all in\n"
          "memory (see --memory); 'auto': one more than there\n"
          "are processors; default 1",
          [&s](const std::string& v) { s.jobs = parseJobs(v); }}}},
       archiveOptions(s),
       resourceOptions(s.resources)},
      "  lumora apply --look heibai photo.jpg grey.jpg\n"
      "  lumora apply --look lofi --strength 75% --out-dir done --suffix _lofi *.jpg\n"
      "  lumora apply --look fugu,lofi,xpro2 --out-dir variants photo.jpg\n"
      "  lumora apply --look rixi --recursive --jobs auto --skip-existing --out-dir done photos\n"
      "  find photos -newer last -print0 | lumora apply --look rixi --files-from - --null -d done\n"
      "  lumora apply --look rixi --recursive --shard 2/8 --json --out-dir done photos > 2.json\n"
      "  lumora apply --look moran --in-place --backup .orig photo.jpg\n"
      "  lumora apply --look mosaic --rect 400,200,160,160 --block 16 photo.jpg hidden.jpg\n"
      "  lumora apply --look colour-fix --pick 320,240 photo.png red.png\n"
      "  curl https://example.org/photo.jpg | lumora apply --look fugu - - > photo.jpg\n"};
}

}  // namespace lumora::tool
