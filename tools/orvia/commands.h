#pragma once

// The subcommands of the orvia tool. Each returns the process exit code: 0 on success, 1 when the network
// cannot be read, written or queried (after printing one line "file:line:column: message" to stderr).

#include <optional>
#include <string>
#include <vector>

namespace Orvia {
class Network;
}
namespace Ruvex {
template <class T>
class CountedPtr;
struct Problem;
}  // namespace Ruvex

namespace OrviaTool {

struct InfoOptions {
    std::string file;
    bool json = false;
};
int RunInfo(const InfoOptions& options);

struct ConvertOptions {
    std::string input;
    std::string output;
    bool relativePaths = false;
    bool absolutePaths = false;
    // Directories for --absolute-paths; empty means the input file's directory.
    std::vector<std::string> searchPaths;
};
int RunConvert(const ConvertOptions& options);

struct GeoOptions {
    std::string file;
    std::vector<double> toWgs84;  // local x y z (metres), or empty
    std::vector<double> toLocal;  // latitude longitude (degrees) elevation (metres), or empty
};
int RunGeo(const GeoOptions& options);

struct RailOptions {
    std::string file;
    bool json = false;
};
// Summarises a rail network document; 1 also when it loads with warnings (names that resolve to nothing),
// which are printed before the summary.
int RunRail(const RailOptions& options);

// Lists each sub-network's profiles (or a profile library's) with their lanes. Problems of the description
// (texts outside their tables, borders out of order, counts that do not match) follow on stderr as
// "file:line:column: message", and make the result 1.
struct ProfilesOptions {
    std::string file;
    bool json = false;
};
int RunProfiles(const ProfilesOptions& options);

// Each traffic-light group (or the one named) animated at one time: active state, lamps, timers and time to
// the next red change; or, with `from`, a timeline from `from` to `to` every `step`. Problems of the
// description follow on stderr as "file:line:column: message" and make the result 1.
struct LightsOptions {
    std::string file;
    std::string group;
    double at = 0.0;
    std::optional<double> from;
    double to = 0.0;
    double step = 1.0;
    bool json = false;
};
int RunLights(const LightsOptions& options);

// The frame of track `track` at (s, t) (or sampled every `step` metres from 0 to its length when step > 0):
// x, y, z, heading, pitch, roll, the lane at t and the portion index. 1 when the track is not found (the
// closest names the file holds are printed) or has no horizontal curve.
struct QueryOptions {
    std::string file;
    std::string track;
    double s = 0;
    double t = 0;
    double step = 0;
    bool json = false;
};
int RunQuery(const QueryOptions& options);

// The lane-to-lane links through intersection `intersection` (explicit ones from the file, then the derived
// ones) with the length of each way, and its banned pairs; or, with `track`, only the links that leave lane
// `lane` of that track at its end (`atEnd`) or start. 1 when the intersection, track or lane is not found.
struct LinksOptions {
    std::string file;
    std::string intersection;
    std::string track;
    std::string lane;
    bool atEnd = true;
    bool json = false;
};
int RunLinks(const LinksOptions& options);

// Every problem of a document (a network, a profile library or a rail network) that the library can find,
// one "file:line:column: message" per line on stdout in document order; 1 when there is any.
struct ValidateOptions {
    std::string file;
    bool json = false;
};
int RunValidate(const ValidateOptions& options);

// Every external file the network refers to, one "ok|missing<TAB>path<TAB>element" per line in walk order,
// paths as stored (or made absolute or relative); existence is judged against the network's directory.
// With `replaceOld`, that path is replaced everywhere first; with `output`, the network is saved there.
// With `check`, 1 when any file is missing.
struct FilesOptions {
    std::string file;
    bool check = false;
    bool relative = false;
    bool absolute = false;
    std::string replaceOld;
    std::string replaceNew;
    std::string output;
    bool json = false;
};
int RunFiles(const FilesOptions& options);

// Loads `file` into `network`. A file that does not load, or loads only by overlooking values that do not
// parse, is bad input: its problems are printed one per line and 1 is returned; 0 otherwise.
int LoadNetwork(const std::string& file, Ruvex::CountedPtr<Orvia::Network>& network);

// `text` with control characters (C0, DEL and, in UTF-8, C1) written as \xHH and backslashes doubled, so
// that names from a file cannot drive the terminal.
std::string Printable(const std::string& text);

// `text` as a JSON string, quotes included; controls (C1 too) escaped for the same reason.
std::string JsonQuoted(const std::string& text);

// Prints `problems` (of the description in `file`, not of this run) one per line on stderr; returns 1 when
// there are any, 0 otherwise.
int ReportProblems(const std::string& file, std::vector<Ruvex::Problem>& problems);

// Prints the element layer's first error (or `fallback` about `file` when it recorded none) and returns 1.
int Fail(const std::string& file, const std::string& fallback);

}  // namespace OrviaTool
