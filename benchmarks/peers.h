// The libraries that the benchmarks compare, ours and others, each wrapped in the same few
// operations. An operation that a library lacks is missing here too.
//
// SimpleIni keeps comments and ignores letter case, as this library does; the goals are set against
// it. GKeyFile keeps comments, but its names are case-sensitive and its options unordered.
// Boost.PropertyTree is case-sensitive and drops comments. inih drops comments, has one flat table
// of lower-case names, and cannot set or write.
#ifndef QUARRY_BENCHMARKS_PEERS_H_
#define QUARRY_BENCHMARKS_PEERS_H_

#include <INIReader.h>
#include <SimpleIni.h>
#include <glib.h>

#include <boost/property_tree/ini_parser.hpp>
#include <boost/property_tree/ptree.hpp>
#include <cstdlib>
#include <fstream>
#include <list>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "dmconfig/config.h"
#include "dmconfig/config_file.h"
#include "settings/snapshot.h"

namespace quarry::benchmarks {

struct Ours {
  static constexpr char kName[] = "ours";
  using Model = storage::dmconfig::DMConfig;
  using File = storage::dmconfig::DMConfigFile;
  static std::unique_ptr<Model> LoadFile(const std::string& path) {
    auto model = std::make_unique<Model>();
    if (File(path, "").LoadConfig(model.get()) != 0) return nullptr;
    return model;
  }
  static std::unique_ptr<Model> LoadText(const std::string& text) {
    auto model = std::make_unique<Model>();
    if (File::LoadText(text, model.get()) != 0) return nullptr;
    return model;
  }
  // Does what a caller of the library would do: ours copies the value, SimpleIni returns a pointer.
  static std::size_t Look(Model* model, const std::string& section, const std::string& option) {
    static std::string value, comment;
    model->GetOptionValue(section, option, &value, &comment);
    return value.size();
  }
  static void Set(Model* model, const std::string& section, const std::string& option,
                  const std::string& value) {
    model->SetOptionValue(section, option, value);
  }
  // Returns the number of options.
  static std::size_t List(Model* model) {
    std::list<std::string> sections, options;
    std::string comment;
    std::size_t count = 0;
    model->GetSectionList(&sections);
    for (const std::string& section : sections) {
      model->GetSectionOptionList(section, &comment, &options);
      count += options.size();
    }
    return count;
  }
  static std::string DumpString(Model* model) {
    std::string text;
    if (File::DumpText(model, &text) != 0) std::abort();
    return text;
  }
  static void DumpFile(Model* model, const std::string& path) {
    if (File("", path).DumpConfig(model) != 0) std::abort();
  }
};

// The same library where a text in memory goes through a stream.
struct OursByStream : Ours {
  static constexpr char kName[] = "stream";
  static std::unique_ptr<Model> LoadText(const std::string& text) {
    auto model = std::make_unique<Model>();
    std::istringstream in(text);
    if (File("", "").LoadConfig(&in, model.get()) != 0) return nullptr;
    return model;
  }
  static std::string DumpString(Model* model) {
    std::ostringstream out;
    if (File("", "").DumpConfig(&out, model) != 0) std::abort();
    return out.str();
  }
};

// The same library where it is compared with its snapshot.
struct LoadedModel : Ours {
  static constexpr char kName[] = "DMConfig";
};

struct SnapshotOfText {
  static constexpr char kName[] = "snapshot";
  using Model = settings::Snapshot;
  static std::unique_ptr<Model> LoadText(const std::string& text) {
    std::vector<settings::Problem> problems;
    auto snapshot = Model::Parse("", text, &problems);
    if (!snapshot) return nullptr;
    return std::make_unique<Model>(std::move(*snapshot));
  }
  static std::size_t Look(Model* model, const std::string& section, const std::string& option) {
    const settings::Option* const found = model->Find(section, option);
    return found == nullptr ? 0 : found->value.size();
  }
};

struct SimpleIni {
  static constexpr char kName[] = "SimpleIni";
  using Model = CSimpleIniA;
  static std::unique_ptr<Model> LoadFile(const std::string& path) {
    auto model = std::make_unique<Model>();
    if (model->LoadFile(path.c_str()) < 0) return nullptr;
    return model;
  }
  static std::unique_ptr<Model> LoadText(const std::string& text) {
    auto model = std::make_unique<Model>();
    if (model->LoadData(text) < 0) return nullptr;
    return model;
  }
  static std::size_t Look(Model* model, const std::string& section, const std::string& option) {
    return static_cast<unsigned char>(*model->GetValue(section.c_str(), option.c_str(), ""));
  }
  static void Set(Model* model, const std::string& section, const std::string& option,
                  const std::string& value) {
    model->SetValue(section.c_str(), option.c_str(), value.c_str());
  }
  static std::size_t List(Model* model) {
    Model::TNamesDepend sections, options;
    std::size_t count = 0;
    model->GetAllSections(sections);
    for (const auto& section : sections) {
      model->GetAllKeys(section.pItem, options);
      count += options.size();
    }
    return count;
  }
  static std::string DumpString(Model* model) {
    std::string out;
    model->Save(out);
    return out;
  }
  static void DumpFile(Model* model, const std::string& path) { model->SaveFile(path.c_str()); }
};

struct GKeyFileDeleter {
  void operator()(GKeyFile* file) const { g_key_file_free(file); }
};

struct Glib {
  static constexpr char kName[] = "GKeyFile";
  using Model = GKeyFile;
  using Pointer = std::unique_ptr<Model, GKeyFileDeleter>;
  static Pointer LoadFile(const std::string& path) {
    Pointer model(g_key_file_new());
    if (!g_key_file_load_from_file(model.get(), path.c_str(), G_KEY_FILE_KEEP_COMMENTS, nullptr)) {
      return nullptr;
    }
    return model;
  }
  static Pointer LoadText(const std::string& text) {
    Pointer model(g_key_file_new());
    if (!g_key_file_load_from_data(model.get(), text.data(), text.size(), G_KEY_FILE_KEEP_COMMENTS,
                                   nullptr)) {
      return nullptr;
    }
    return model;
  }
  static std::size_t Look(Model* model, const std::string& section, const std::string& option) {
    static std::string value;
    char* const found = g_key_file_get_value(model, section.c_str(), option.c_str(), nullptr);
    value = found;
    g_free(found);
    return value.size();
  }
  static void Set(Model* model, const std::string& section, const std::string& option,
                  const std::string& value) {
    g_key_file_set_value(model, section.c_str(), option.c_str(), value.c_str());
  }
  static std::size_t List(Model* model) {
    std::size_t count = 0;
    char** const sections = g_key_file_get_groups(model, nullptr);
    for (char** section = sections; *section != nullptr; ++section) {
      gsize options = 0;
      g_strfreev(g_key_file_get_keys(model, *section, &options, nullptr));
      count += options;
    }
    g_strfreev(sections);
    return count;
  }
  static std::string DumpString(Model* model) {
    gsize size = 0;
    char* const data = g_key_file_to_data(model, &size, nullptr);
    std::string out(data, size);
    g_free(data);
    return out;
  }
  static void DumpFile(Model* model, const std::string& path) {
    g_key_file_save_to_file(model, path.c_str(), nullptr);
  }
};

struct PropertyTree {
  static constexpr char kName[] = "ptree";
  using Model = boost::property_tree::ptree;
  using Path = Model::path_type;
  static std::unique_ptr<Model> LoadFile(const std::string& path) {
    auto model = std::make_unique<Model>();
    boost::property_tree::read_ini(path, *model);
    return model;
  }
  static std::unique_ptr<Model> LoadText(const std::string& text) {
    auto model = std::make_unique<Model>();
    std::istringstream in(text);
    boost::property_tree::read_ini(in, *model);
    return model;
  }
  static std::size_t Look(Model* model, const std::string& section, const std::string& option) {
    static std::string value;
    value = model->get_child(Path(section, '\0')).get<std::string>(Path(option, '\0'));
    return value.size();
  }
  static void Set(Model* model, const std::string& section, const std::string& option,
                  const std::string& value) {
    model->get_child(Path(section, '\0')).put(Path(option, '\0'), value);
  }
  static std::size_t List(Model* model) {
    std::list<std::string> options;
    for (const auto& section : *model) {
      for (const auto& option : section.second) options.push_back(option.first);
    }
    return options.size();
  }
  static std::string DumpString(Model* model) {
    std::ostringstream out;
    boost::property_tree::write_ini(out, *model);
    return out.str();
  }
  static void DumpFile(Model* model, const std::string& path) {
    boost::property_tree::write_ini(path, *model);
  }
};

struct Inih {
  static constexpr char kName[] = "inih";
  using Model = INIReader;
  static std::unique_ptr<Model> LoadFile(const std::string& path) {
    auto model = std::make_unique<Model>(path);
    if (model->ParseError() != 0) return nullptr;
    return model;
  }
  static std::unique_ptr<Model> LoadText(const std::string& text) {
    auto model = std::make_unique<Model>(text.c_str(), text.size());
    if (model->ParseError() != 0) return nullptr;
    return model;
  }
  static std::size_t Look(Model* model, const std::string& section, const std::string& option) {
    static std::string value;
    value = model->Get(section, option, "");
    return value.size();
  }
};

}  // namespace quarry::benchmarks

#endif  // QUARRY_BENCHMARKS_PEERS_H_
