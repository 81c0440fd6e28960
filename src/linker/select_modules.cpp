// Which modules are linked: every module given directly, and each library
// module that defines a public an already linked module asks for, until
// nothing more is pulled in. Libraries are files of modules one after
// another, given on the command line or named by INCLUDELIB.
#include <deque>
#include <unordered_set>

#include "linker/linker.h"
#include "platform/platform.h"

namespace ta51::linker {

namespace {

class ModuleSelector {
 public:
  explicit ModuleSelector(Linker& linker) : linker_(linker) {}

  void Run() {
    size_t given = linker_.modules.size();
    for (size_t module = 0; module < given; ++module)
      if (linker_.modules[module].fromLibrary) IndexLibraryModule(static_cast<int>(module));
    for (size_t module = 0; module < given; ++module)
      if (!linker_.modules[module].fromLibrary) Link(static_cast<int>(module));
    while (!requests_.empty()) {
      std::string_view name = requests_.front();
      requests_.pop_front();
      if (linker_.publics.count(name) != 0) continue;
      auto found = linker_.libraryPublics.find(name);
      if (found == linker_.libraryPublics.end() || linker_.modules[static_cast<size_t>(found->second)].linked)
        waiting_.insert(name);  // a library read later may have it
      else
        Link(found->second);
    }
  }

 private:
  void Link(int index) {
    Module& module = linker_.modules[static_cast<size_t>(index)];
    module.linked = true;
    linker_.linkOrder.push_back(index);
    for (size_t symbol = 0; symbol < module.publics.size(); ++symbol) {
      const std::string& name = module.publics[symbol].name;
      auto [entry, added] = linker_.publics.try_emplace(name, PublicRef{index, static_cast<int>(symbol)});
      if (!added)
        linker_.Report(linker_.PathOf(module), Msg::DuplicatePublic,
                       {name, linker_.modules[static_cast<size_t>(entry->second.module)].name, module.name});
    }
    // Every declared external asks for its public, also one that no field
    // uses: that is how a reference such as __cstart pulls its module in.
    for (const External& external : module.externals) requests_.push_back(external.name);
    for (const std::string& library : module.libraries) ReadLibrary(library, module);
  }

  void IndexLibraryModule(int index) {
    for (const Public& symbol : linker_.modules[static_cast<size_t>(index)].publics) {
      linker_.libraryPublics.try_emplace(symbol.name, index);
      auto waiting = waiting_.find(symbol.name);
      if (waiting != waiting_.end()) {
        requests_.push_back(*waiting);
        waiting_.erase(waiting);
      }
    }
  }

  // An INCLUDELIB name: the current directory first, then each -L directory.
  void ReadLibrary(const std::string& name, const Module& user) {
    std::string path;
    for (size_t candidate = 0; candidate <= linker_.options.libraryDirs.size() && path.empty(); ++candidate) {
      std::string tried = candidate == 0 ? name : linker_.options.libraryDirs[candidate - 1] + "/" + name;
      if (FileExists(tried)) path = tried;
    }
    if (path.empty()) {
      linker_.Report(linker_.PathOf(user), Msg::LibraryNotFound, {name, user.name});
      return;
    }
    if (!linker_.libraryFiles.try_emplace(FullPath(path), 0).second) return;  // read already
    size_t first = linker_.modules.size();
    if (!ReadInputFile(linker_, path, true)) {
      linker_.Report(path, Msg::CannotOpen, {path});
      return;
    }
    for (size_t module = first; module < linker_.modules.size(); ++module) IndexLibraryModule(static_cast<int>(module));
  }

  Linker& linker_;
  std::deque<std::string_view> requests_;
  std::unordered_set<std::string_view> waiting_;
};

}  // namespace

void SelectModules(Linker& linker) {
  for (const InputText& file : linker.files)
    if (file.library) linker.libraryFiles.try_emplace(FullPath(file.path), 0);
  ModuleSelector(linker).Run();
  for (int index : linker.linkOrder) {
    const Module& module = linker.modules[static_cast<size_t>(index)];
    if (!module.bankName.empty()) linker.Report(linker.PathOf(module), Msg::CodeBanks, {module.name, module.bankName});
  }
}

}  // namespace ta51::linker
