// picturehost gallery: shows every method on pictures of the user, on one page for a browser.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <filesystem>
#include <memory>

#include "tool/command.h"
#include "tool/exit_status.h"
#include "tool/gallery_host.h"
#include "tool/gallery_page.h"
#include "tool/gallery_sections.h"
#include "tool/interruption.h"
#include "tool/output_file.h"
#include "tool/picture_files.h"
#include "tool/progress.h"
#include "tool/test_pictures.h"

namespace tool {
namespace {

namespace fs = std::filesystem;

struct GalleryOptions {
  HostOptions host;
  std::vector<std::string> inputs;
  std::string folder;
  bool quiet = false;
};

// Whole pictures are shown with so many pixels a side; smaller where there are several, for the
// sake of the page's size.
int MostShown(std::size_t pictures) { return pictures == 1 ? 480 : pictures <= 4 ? 320 : 240; }

std::vector<Subject> Subjects(const GalleryOptions& options) {
  std::vector<Subject> subjects;
  const auto add = [&](Bitmap picture, const std::string& name) {
    subjects.push_back(
        {std::make_shared<const Bitmap>(std::move(picture)), name, options.host.Alpha(), false});
  };
  for (const std::string& input : options.inputs) {
    add(LoadPicture(input), fs::path(input).filename().string());
  }
  if (options.inputs.empty()) add(DrawScene(), "scene");
  return subjects;
}

std::vector<GalleryChapter> Chapters(const std::vector<Subject>& subjects) {
  std::vector<GalleryChapter> chapters;
  int number = 0;
  for (const Subject& subject : subjects) {
    chapters.push_back(PictureChapter(subject, ++number, MostShown(subjects.size())));
  }
  chapters.push_back(CommonChapter());
  return chapters;
}

std::string Origin(const HostOptions& options, const PluginFile& plugin) {
  char version[32];
  std::snprintf(version, sizeof version, "%.10g", options.version);
  return "The methods of " + fs::path(plugin.Shown()).filename().string() +
         ", run by picturehost " + PICTUREHOST_VERSION + " (" + std::to_string(8 * sizeof(void*)) +
         " bits) as in a " + options.kind + " application of host version " + version +
         ", pixel format " + std::to_string(options.pixelFormat) + ".";
}

// How much work a tile is, for the progress bar: in megapixels that are read, and something for
// each tile.
double WorkOf(const GalleryTile& tile) {
  const Bitmap& picture = *tile.call.on.picture;
  return double(picture.width) * picture.height / 1e6 + 0.1;
}

// All chapters as HTML; what went wrong is added to `faults`. Throws Interrupted.
std::string Body(const std::vector<GalleryChapter>& chapters, GalleryHost& host, Progress* progress,
                 std::vector<std::string>& faults) {
  std::string html;
  for (const GalleryChapter& chapter : chapters) {
    html += ChapterStart(chapter);
    for (const GallerySection& section : chapter.sections) {
      html += SectionStart(section);
      for (const GalleryTile& tile : section.tiles) {
        if (progress != nullptr) progress->Begin(tile.call.method, WorkOf(tile));
        const TileResult made = host.Make(tile.call);
        faults.insert(faults.end(), made.faults.begin(), made.faults.end());
        html += TileFigure(tile, made);
      }
      html += SectionEnd();
    }
  }
  return html;
}

// The same, on a terminal with a bar.
std::string WatchedBody(const std::vector<GalleryChapter>& chapters, host::Runtime& runtime,
                        GalleryHost& host, std::vector<std::string>& faults) {
  int tiles = 0;
  double work = 0;
  for (const GalleryChapter& chapter : chapters) {
    for (const GallerySection& section : chapter.sections) {
      for (const GalleryTile& tile : section.tiles) ++tiles, work += WorkOf(tile);
    }
  }
  Progress progress(runtime, "gallery", tiles, work);
  return Body(chapters, host, &progress, faults);
}

// Makes the folder, unless it is there, and the page in it.
void Save(const std::string& folder, const OutputFile& file, const std::string& page) {
  std::error_code error;
  fs::create_directory(folder, error);
  if (error) throw Failure("cannot make the folder '" + folder + "': " + error.message());
  file.Write({page.begin(), page.end()});
}

// Throws when it is already clear that no page can be written there.
void CheckFolder(const std::string& folder, const OutputFile& page) {
  std::error_code error;
  if (folder.empty()) throw UsageError("the folder for the page has no name");
  if (fs::exists(folder, error)) {
    page.Check();
  } else {
    const fs::path path(folder);
    OutputFile(path.has_filename() ? folder : path.parent_path().string()).Check();
  }
}

int MakeGallery(const GalleryOptions& options) {
  const std::string path = (fs::path(options.folder) / "index.html").string();
  const OutputFile file(path);
  CheckFolder(options.folder, file);
  const std::vector<GalleryChapter> chapters = Chapters(Subjects(options));
  host::Runtime runtime(options.host.Runtime());
  options.host.Follow(runtime);
  const PluginFile plugin = options.host.Plugin();
  const auto library = plugin.Load(runtime);
  const bool watched = SomebodyWatches() && !options.host.trace && !options.quiet;
  GalleryHost host(runtime, *library, options.host.pixelFormat, watched);
  std::vector<std::string> faults;
  std::string page = PageStart(Origin(options.host, plugin), chapters);
  try {
    page += watched ? WatchedBody(chapters, runtime, host, faults)
                    : Body(chapters, host, nullptr, faults);
  } catch (const Interrupted&) {
    EndBySignal(InterruptibleCall::Signal());
  }
  page += PageEnd();
  Save(options.folder, file, page);
  std::printf("%s\n", path.c_str());
  for (const std::string& fault : faults) Complain(fault);
  return faults.empty() ? kExitOk : kExitFailure;
}

}  // namespace

void AddGalleryCommand(CLI::App& app, Action& chosen) {
  const auto options = std::make_shared<GalleryOptions>();
  CLI::App* command = app.add_subcommand(
      "gallery", "Show every method on your pictures, and plots, on one page for a browser");
  command
      ->add_option("PICTURE", options->inputs,
                   "The pictures: PNG, JPEG or BMP (default: a landscape that the tool draws)")
      ->type_name("");
  command
      ->add_option("-o,--output", options->folder,
                   "The folder for index.html, which is all there is; it is made when missing")
      ->type_name("DIR")
      ->required();
  command->add_flag("--quiet", options->quiet, "No progress; errors are told");
  AddHostOptions(*command, options->host);
  command->footer(
      "Prints the path of the page. It needs neither the network nor scripts. A call that the "
      "plug-in refuses has a tile that says so; the page appears all the same, and the status is "
      "1.\n\n"
      "Examples:\n"
      "  picturehost gallery -o gallery\n"
      "  picturehost gallery photo.jpg logo.png -o gallery --kind console");
  command->callback([options, &chosen] { chosen = [options] { return MakeGallery(*options); }; });
}

}  // namespace tool
