// Golden test runner: runs the assembler on each case directory and compares
// what it produced, byte for byte, with the expected files of the case.
//
//   ta51_golden <path of ta51> <cases dir> [name filter]
//
// A case is a directory. Its control files are not copied into the run:
//   args             the command line, one line split on blanks and tabs;
//                    "source.asm;" when the file is absent, no argument
//                    at all when it is empty
//   env              extra environment, lines NAME=VALUE; @DIR@ in a value
//                    stands for the run directory
//   objname, lstname names of the object and list file ("source.OBJ",
//                    "source.LST" when absent)
//   about            free text: what the case checks and why
//   from             files kept elsewhere in the tree (the examples), one
//                    path per line relative to the case; each is copied in
//   expected.stdout  standard output (required)
//   expected.status  exit status as a decimal number (required)
//   expected.obj     the object file; or expected.noobj: it must not exist
//   expected.lst     the list file; or expected.nolst: it must not exist
//   expected.stderr  standard error (optional)
// Every other file and directory of the case is copied into a fresh
// directory /tmp/ta51g-XXXXXX, where the assembler runs with standard input
// from /dev/null, SOURCE_DATE_EPOCH=0, TZ=UTC and no INCLUDE variable.
// A run also fails if it leaves a temporary file named zvtmp* behind
// (files of the case and the object and list file apart).
//
// Normalisation of the run directory. Its absolute path is machine-specific,
// so every occurrence of it in the outputs is replaced by "@DIR@" before the
// comparison, in its own case and in upper case ("@DIR@" is its own upper
// case, so an upper-cased path still compares as the upper case of the
// expected text). The form with every full stop written as `*`, which
// source references use, is replaced too; the name that mkdtemp makes has no
// full stop, so this matters only for a /tmp reached through a link. In the
// object file a path can stand right behind a length that counts it:
//   ,XXXX<path>(line)   a source reference, at least four hex digits
//   ,XX"<path>..."      a quoted counted name, at least two hex digits
// Such a length is rewritten to count the normalised text, in the same
// minimum width, so the expected files are self-consistent and byte-exact:
// a reference to line 6 of source.asm reads ,0013@DIR@/source*asm(6).
// A length that is wrong in the real output stays wrong by the same amount.
// Padding is not rewritten: a path printed with "%-40s" (the page header of
// the list file) is followed by as many blanks as the real path leaves. The
// run directory's name always has 17 characters, so these blanks are the
// same on every machine whose /tmp is no symbolic link.
//
// UPDATE_GOLDEN=1 writes the normalised actual outputs into the case's
// expected files, to start a new case. Those files then record what the
// assembler does, not what it must do: check every byte of them by hand
// against the required behaviour before the case is kept.
// TA51_GOLDEN_KEEP=1 keeps the run directories for inspection.

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <vector>

extern char** environ;

namespace fs = std::filesystem;

namespace {

constexpr const char* kPlaceholder = "@DIR@";
constexpr unsigned kTimeoutSeconds = 60;
constexpr size_t kContextLines = 3;  // actual lines shown after a difference
const std::set<std::string> kControlFiles = {
    "args",           "env",           "objname",      "lstname",
    "about",          "from",          "expected.stdout", "expected.status", "expected.obj",
    "expected.noobj", "expected.lst",  "expected.nolst", "expected.stderr"};

// ---------------------------------------------------------------- files ---

std::optional<std::string> ReadFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return std::nullopt;
  std::ostringstream content;
  content << in.rdbuf();
  return content.str();
}

bool WriteFile(const fs::path& path, const std::string& content) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << content;
  return static_cast<bool>(out);
}

std::string ReadFileOr(const fs::path& path, const std::string& fallback) {
  std::optional<std::string> content = ReadFile(path);
  return content ? *content : fallback;
}

std::string Trim(const std::string& text) {
  size_t begin = text.find_first_not_of(" \t\r\n");
  if (begin == std::string::npos) return "";
  size_t end = text.find_last_not_of(" \t\r\n");
  return text.substr(begin, end - begin + 1);
}

std::string FirstLine(const std::string& text) {
  std::string line = text.substr(0, text.find('\n'));
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return line;
}

std::vector<std::string> SplitBlanks(const std::string& line) {
  std::vector<std::string> words;
  std::string word;
  for (char c : line) {
    if (c == ' ' || c == '\t') {
      if (!word.empty()) words.push_back(word);
      word.clear();
    } else {
      word += c;
    }
  }
  if (!word.empty()) words.push_back(word);
  return words;
}

std::string ReplaceAll(std::string text, const std::string& from, const std::string& to) {
  for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
    text.replace(at, from.size(), to);
  return text;
}

// ---------------------------------------------------------- normalising ---

// The texts by which the run directory can appear in an output, longest
// first, so that no shorter form cuts into a longer one.
std::vector<std::string> DirectoryForms(const fs::path& directory) {
  std::vector<std::string> bases = {directory.string()};
  std::error_code error;
  fs::path canonical = fs::canonical(directory, error);
  if (!error) bases.push_back(canonical.string());
  std::vector<std::string> forms;
  for (const std::string& base : bases) {
    std::string starred = ReplaceAll(base, ".", "*");
    for (const std::string& form : {base, starred}) {
      std::string upper = form;
      for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
      forms.push_back(form);
      forms.push_back(upper);
    }
  }
  std::sort(forms.begin(), forms.end(),
            [](const std::string& a, const std::string& b) { return a.size() > b.size(); });
  forms.erase(std::unique(forms.begin(), forms.end()), forms.end());
  return forms;
}

// Rewrites a length field that ends at `end` of `out` and counts a path
// form of `formSize` bytes that follows it, as told at the top of the file.
void RewriteCount(std::string& out, size_t formSize) {
  size_t end = out.size();
  bool quoted = end > 0 && out[end - 1] == '"';
  if (quoted) --end;
  size_t begin = end;
  while (begin > 0 && end - begin < 8 && std::isxdigit(static_cast<unsigned char>(out[begin - 1])))
    --begin;
  size_t digits = end - begin;
  if (digits < (quoted ? 2u : 4u) || begin == 0 || out[begin - 1] != ',') return;
  unsigned long count = std::stoul(out.substr(begin, digits), nullptr, 16);
  if (count < formSize) return;
  count = count - formSize + std::strlen(kPlaceholder);
  char field[16];
  std::snprintf(field, sizeof field, quoted ? "%02lX" : "%04lX", count);
  out.replace(begin, digits, field);
}

std::string Normalise(const std::string& text, const std::vector<std::string>& forms,
                      bool rewriteCounts) {
  std::string out;
  size_t at = 0;
  while (at < text.size()) {
    size_t best = std::string::npos, bestSize = 0;
    for (const std::string& form : forms) {
      size_t found = text.find(form, at);
      if (found < best || (found == best && form.size() > bestSize)) {
        best = found;
        bestSize = form.size();
      }
    }
    if (best == std::string::npos) break;
    out.append(text, at, best - at);
    if (rewriteCounts) RewriteCount(out, bestSize);
    out += kPlaceholder;
    at = best + bestSize;
  }
  out.append(text, at, std::string::npos);
  return out;
}

// ------------------------------------------------------------ reporting ---

std::string Escape(const std::string& text) {
  std::string out;
  for (unsigned char c : text) {
    if (c == '\\') out += "\\\\";
    else if (c == '\r') out += "\\r";
    else if (c == '\t') out += "\\t";
    else if (c == '\f') out += "\\f";
    else if (c == '\n') out += "\\n";
    else if (c >= 0x20 && c < 0x7F) out += static_cast<char>(c);
    else {
      char hex[8];
      std::snprintf(hex, sizeof hex, "\\x%02X", c);
      out += hex;
    }
  }
  return out;
}

std::vector<std::string> SplitLines(const std::string& text) {
  std::vector<std::string> lines;
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find('\n', start);
    if (end == std::string::npos) end = text.size() - 1;
    lines.push_back(text.substr(start, end - start + 1));
    start = end + 1;
  }
  return lines;
}

// Describes the first line where two texts differ; empty when equal.
std::string Difference(const std::string& expected, const std::string& actual) {
  if (expected == actual) return "";
  std::vector<std::string> want = SplitLines(expected), got = SplitLines(actual);
  size_t line = 0;
  while (line < want.size() && line < got.size() && want[line] == got[line]) ++line;
  auto show = [](const std::vector<std::string>& lines, size_t index) {
    if (index >= lines.size()) return std::string("<end of file>");
    std::string quoted(1, '"');
    quoted.append(Escape(lines[index])).push_back('"');
    return quoted;
  };
  std::ostringstream message;
  message << "first difference at line " << line + 1 << " (expected " << expected.size()
          << " bytes, got " << actual.size() << ")\n"
          << "      expected: " << show(want, line) << "\n"
          << "      actual:   " << show(got, line);
  for (size_t next = line + 1; next < got.size() && next <= line + kContextLines; ++next)
    message << "\n      then:     " << show(got, next);
  return message.str();
}

// ---------------------------------------------------------------- running ---

struct RunResult {
  std::string out, err;
  int status = -1;  // exit status, or -1 when ended by a signal
  int signal = 0;
};

std::string ReadAll(FILE* file) {
  std::string content;
  std::rewind(file);
  char block[4096];
  size_t got;
  while ((got = std::fread(block, 1, sizeof block, file)) > 0) content.append(block, got);
  return content;
}

std::vector<std::string> BuildEnvironment(const fs::path& caseDir, const std::string& runDir) {
  std::vector<std::string> env;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    std::string item = *entry;
    std::string name = item.substr(0, item.find('='));
    if (name != "INCLUDE" && name != "SOURCE_DATE_EPOCH" && name != "TZ") env.push_back(item);
  }
  env.push_back("SOURCE_DATE_EPOCH=0");
  env.push_back("TZ=UTC");
  std::istringstream extra(ReadFileOr(caseDir / "env", ""));
  for (std::string line; std::getline(extra, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.find('=') == std::string::npos) continue;
    std::string name = line.substr(0, line.find('='));
    std::erase_if(env, [&](const std::string& item) { return item.rfind(name + "=", 0) == 0; });
    env.push_back(ReplaceAll(line, kPlaceholder, runDir));
  }
  return env;
}

std::vector<char*> PointerList(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

// Child side of the run; never returns.
[[noreturn]] void ExecAssembler(const std::string& runDir, int outFd, int errFd,
                                std::vector<char*>& argv, std::vector<char*>& envp) {
  int input = open("/dev/null", O_RDONLY);
  if (chdir(runDir.c_str()) != 0 || input < 0) _exit(126);
  dup2(input, 0);
  dup2(outFd, 1);
  dup2(errFd, 2);
  alarm(kTimeoutSeconds);
  execve(argv[0], argv.data(), envp.data());
  _exit(127);
}

bool Run(const std::string& binary, std::vector<std::string> args, const std::string& runDir,
         std::vector<std::string> env, RunResult& result) {
  args.insert(args.begin(), binary);
  std::vector<char*> argv = PointerList(args), envp = PointerList(env);
  FILE* out = std::tmpfile();
  FILE* err = std::tmpfile();
  if (out == nullptr || err == nullptr) return false;
  std::fflush(nullptr);
  pid_t child = fork();
  if (child == 0) ExecAssembler(runDir, fileno(out), fileno(err), argv, envp);
  int wait = 0;
  bool ok = child > 0 && waitpid(child, &wait, 0) == child;
  if (ok && WIFEXITED(wait)) result.status = WEXITSTATUS(wait);
  if (ok && WIFSIGNALED(wait)) result.signal = WTERMSIG(wait);
  result.out = ReadAll(out);
  result.err = ReadAll(err);
  std::fclose(out);
  std::fclose(err);
  return ok;
}

// ------------------------------------------------------------------ cases ---

struct CaseRun {
  fs::path caseDir;
  std::string runDir;
  std::vector<std::string> forms;
  std::set<std::string> copied;  // top-level names brought in from the case
  RunResult result;
  std::vector<std::string> failures;

  void Fail(const std::string& what) { failures.push_back(what); }
  std::string Norm(const std::string& text, bool object = false) const {
    return Normalise(text, forms, object);
  }
  fs::path CaseFile(const char* name) const { return caseDir / name; }
  bool Has(const char* name) const { return fs::exists(CaseFile(name)); }
};

std::string MakeRunDirectory() {
  char pattern[] = "/tmp/ta51g-XXXXXX";
  if (mkdtemp(pattern) == nullptr) return "";
  return pattern;
}

void CopyCaseFiles(CaseRun& run) {
  for (const fs::directory_entry& entry : fs::directory_iterator(run.caseDir)) {
    std::string name = entry.path().filename().string();
    if (kControlFiles.count(name) != 0) continue;
    fs::copy(entry.path(), fs::path(run.runDir) / name, fs::copy_options::recursive);
    run.copied.insert(name);
  }
  for (const std::string& line : SplitLines(ReadFileOr(run.caseDir / "from", ""))) {
    if (Trim(line).empty()) continue;
    fs::path source = run.caseDir / Trim(line);
    std::string name = source.filename().string();
    fs::copy(source, fs::path(run.runDir) / name);
    run.copied.insert(name);
  }
}

std::vector<std::string> CaseArguments(const fs::path& caseDir) {
  std::optional<std::string> args = ReadFile(caseDir / "args");
  if (!args) return {"source.asm;"};
  return SplitBlanks(FirstLine(*args));
}

std::string OutputName(const fs::path& caseDir, const char* control, const char* fallback) {
  std::string name = Trim(ReadFileOr(caseDir / control, ""));
  return name.empty() ? fallback : name;
}

// A file named zvtmp* that the case did not bring and that is neither the
// object nor the list file is a temporary file that the run failed to delete.
void CheckLeftovers(CaseRun& run) {
  std::set<std::string> known = run.copied;
  known.insert(OutputName(run.caseDir, "objname", "source.OBJ"));
  known.insert(OutputName(run.caseDir, "lstname", "source.LST"));
  for (const fs::directory_entry& entry : fs::directory_iterator(run.runDir)) {
    std::string name = entry.path().filename().string();
    if (name.rfind("zvtmp", 0) == 0 && known.count(name) == 0)
      run.Fail("temporary file left behind: " + name);
  }
}

void CompareText(CaseRun& run, const char* what, const std::string& expected,
                 const std::string& actual) {
  std::string difference = Difference(expected, actual);
  if (!difference.empty()) run.Fail(std::string(what) + ": " + difference);
}

void CheckStatus(CaseRun& run) {
  if (run.result.signal != 0) {
    run.Fail("ended by signal " + std::to_string(run.result.signal) +
             (run.result.signal == SIGALRM ? " (time limit)" : ""));
    return;
  }
  std::optional<std::string> expected = ReadFile(run.CaseFile("expected.status"));
  if (!expected) return run.Fail("case has no expected.status (UPDATE_GOLDEN=1 makes one)");
  std::string actual = std::to_string(run.result.status);
  if (Trim(*expected) != actual)
    run.Fail("exit status: expected " + Trim(*expected) + ", actual " + actual);
}

// Compares an output file with `expectedName`, or checks its absence when
// the case has `absentName`.
void CheckOutputFile(CaseRun& run, const std::string& fileName, const char* expectedName,
                     const char* absentName, bool object) {
  std::optional<std::string> actual = ReadFile(fs::path(run.runDir) / fileName);
  if (run.Has(expectedName)) {
    if (!actual) return run.Fail(fileName + " was not written");
    CompareText(run, fileName.c_str(), ReadFileOr(run.CaseFile(expectedName), ""),
                run.Norm(*actual, object));
  } else if (run.Has(absentName) && fs::exists(fs::path(run.runDir) / fileName)) {
    run.Fail(fileName + " exists but must not");
  }
}

void CheckOutputs(CaseRun& run) {
  std::optional<std::string> stdoutWanted = ReadFile(run.CaseFile("expected.stdout"));
  if (!stdoutWanted) run.Fail("case has no expected.stdout (UPDATE_GOLDEN=1 makes one)");
  else CompareText(run, "standard output", *stdoutWanted, run.Norm(run.result.out));
  if (run.Has("expected.stderr"))
    CompareText(run, "standard error", ReadFileOr(run.CaseFile("expected.stderr"), ""),
                run.Norm(run.result.err));
  CheckStatus(run);
  CheckOutputFile(run, OutputName(run.caseDir, "objname", "source.OBJ"), "expected.obj",
                  "expected.noobj", true);
  CheckOutputFile(run, OutputName(run.caseDir, "lstname", "source.LST"), "expected.lst",
                  "expected.nolst", false);
}

// Writes an output file, or its absence, into the case's expected files.
void UpdateOutputFile(CaseRun& run, const std::string& fileName, const char* expectedName,
                      const char* absentName, bool object) {
  std::optional<std::string> actual = ReadFile(fs::path(run.runDir) / fileName);
  fs::remove(run.CaseFile(expectedName));
  fs::remove(run.CaseFile(absentName));
  if (actual) WriteFile(run.CaseFile(expectedName), run.Norm(*actual, object));
  else WriteFile(run.CaseFile(absentName), "");
}

void UpdateOutputs(CaseRun& run) {
  WriteFile(run.CaseFile("expected.stdout"), run.Norm(run.result.out));
  WriteFile(run.CaseFile("expected.status"), std::to_string(run.result.status) + "\n");
  if (run.Has("expected.stderr") || !run.result.err.empty())
    WriteFile(run.CaseFile("expected.stderr"), run.Norm(run.result.err));
  UpdateOutputFile(run, OutputName(run.caseDir, "objname", "source.OBJ"), "expected.obj",
                   "expected.noobj", true);
  UpdateOutputFile(run, OutputName(run.caseDir, "lstname", "source.LST"), "expected.lst",
                   "expected.nolst", false);
  if (run.result.signal != 0) run.Fail("ended by signal " + std::to_string(run.result.signal));
}

bool KeepRuns() {
  const char* keep = std::getenv("TA51_GOLDEN_KEEP");
  return keep != nullptr && std::string(keep) == "1";
}

void PrintResult(const CaseRun& run, bool update) {
  std::string name = run.caseDir.filename().string();
  if (run.failures.empty()) {
    std::cout << (update ? "updated " : "ok   ") << name << "\n";
    return;
  }
  std::cout << "FAIL " << name
            << (KeepRuns() ? "  (kept in " + run.runDir + ")" : "  (TA51_GOLDEN_KEEP=1 keeps the run)")
            << "\n";
  for (const std::string& failure : run.failures) std::cout << "    " << failure << "\n";
  if (!run.result.err.empty())
    std::cout << "    standard error: \"" << Escape(run.Norm(run.result.err)) << "\"\n";
}

bool RunCase(const std::string& binary, const fs::path& caseDir, bool update) {
  CaseRun run;
  run.caseDir = caseDir;
  run.runDir = MakeRunDirectory();
  if (run.runDir.empty()) {
    std::cout << "FAIL " << caseDir.filename().string() << ": cannot make a run directory\n";
    return false;
  }
  run.forms = DirectoryForms(run.runDir);
  CopyCaseFiles(run);
  if (!Run(binary, CaseArguments(caseDir), run.runDir, BuildEnvironment(caseDir, run.runDir),
           run.result)) {
    run.Fail("cannot run " + binary);
  } else {
    update ? UpdateOutputs(run) : CheckOutputs(run);
    CheckLeftovers(run);
  }
  PrintResult(run, update);
  if (!KeepRuns()) fs::remove_all(run.runDir);
  return run.failures.empty();
}

std::vector<fs::path> FindCases(const fs::path& casesDir, const std::string& filter) {
  std::vector<fs::path> cases;
  for (const fs::directory_entry& entry : fs::directory_iterator(casesDir)) {
    std::string name = entry.path().filename().string();
    if (entry.is_directory() && name.find(filter) != std::string::npos)
      cases.push_back(entry.path());
  }
  std::sort(cases.begin(), cases.end());
  return cases;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3 || argc > 4) {
    std::cerr << "usage: ta51_golden <path of ta51> <cases dir> [name filter]\n";
    return 2;
  }
  std::string binary = fs::absolute(argv[1]).string();
  fs::path casesDir = fs::absolute(argv[2]);
  std::string filter = argc == 4 ? argv[3] : "";
  const char* updateVariable = std::getenv("UPDATE_GOLDEN");
  bool update = updateVariable != nullptr && std::string(updateVariable) == "1";
  if (!fs::is_directory(casesDir)) {
    std::cerr << "no such cases directory: " << casesDir << "\n";
    return 2;
  }
  std::vector<fs::path> cases = FindCases(casesDir, filter);
  int passed = 0, failed = 0;
  for (const fs::path& caseDir : cases) (RunCase(binary, caseDir, update) ? passed : failed)++;
  std::cout << passed << " passed, " << failed << " failed\n";
  if (cases.empty()) std::cout << "no case found in " << casesDir.string() << "\n";
  return failed == 0 && !cases.empty() ? 0 : 1;
}
