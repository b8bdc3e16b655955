// orvia: inspect, convert and georeference network files.

#include "commands.h"

#include <CLI/CLI.hpp>

#include <cstdio>

int main(int argc, char** argv) {
    CLI::App app{"Inspect, convert and georeference Orvia network files."};
    app.require_subcommand(1);

    OrviaTool::InfoOptions info;
    CLI::App* infoCommand =
        app.add_subcommand("info", "Summarise a network: version, names, counts, extent.");
    infoCommand->add_option("FILE", info.file, "Network file")->required();
    infoCommand->add_flag("--json", info.json, "Print the summary as one JSON object");

    OrviaTool::ConvertOptions convert;
    CLI::App* convertCommand =
        app.add_subcommand("convert", "Read a network and write it back in the current format.");
    convertCommand->add_option("IN", convert.input, "Network file to read")->required();
    convertCommand->add_option("OUT", convert.output, "File to write")->required();
    CLI::Option* relative = convertCommand->add_flag("--relative-paths", convert.relativePaths,
                                                     "Make external file paths relative to OUT's directory");
    CLI::Option* absolute =
        convertCommand
            ->add_option("--absolute-paths", convert.searchPaths,
                         "Make external file paths absolute, looking for each file in the DIRs in order "
                         "(IN's directory when none is given)")
            ->expected(0, CLI::detail::expected_max_vector_size)
            ->type_name("DIR");
    relative->excludes(absolute);

    OrviaTool::GeoOptions geo;
    CLI::App* geoCommand =
        app.add_subcommand("geo", "Convert a point between the network's local frame and WGS84.");
    geoCommand->add_option("FILE", geo.file, "Network file")->required();
    CLI::App* direction = geoCommand->add_option_group("direction", "The conversion to make");
    direction
        ->add_option("--to-wgs84", geo.toWgs84,
                     "Local point X Y Z (metres) to latitude, longitude, elevation")
        ->expected(3);
    direction->add_option("--to-local", geo.toLocal, "LAT LON (degrees) ELEV (metres) to the local point")
        ->expected(3);
    direction->require_option(1);

    OrviaTool::RailOptions rail;
    CLI::App* railCommand = app.add_subcommand("rail",
                                               "Summarise a rail network: tracks, switches, signals, "
                                               "mileage systems, properties.");
    railCommand->add_option("FILE", rail.file, "Rail network file")->required();
    railCommand->add_flag("--json", rail.json, "Print the summary as one JSON object");

    OrviaTool::ProfilesOptions profiles;
    CLI::App* profilesCommand =
        app.add_subcommand("profiles", "List each sub-network's profiles with their lanes and problems.");
    profilesCommand->add_option("FILE", profiles.file, "Network or profile library file")->required();
    profilesCommand->add_flag("--json", profiles.json, "Print the listing as one JSON object");

    OrviaTool::LightsOptions lights;
    CLI::App* lightsCommand =
        app.add_subcommand("lights", "Animate traffic-light groups at a time, or over a range.");
    lightsCommand->add_option("FILE", lights.file, "Network file")->required();
    lightsCommand->add_option("--group", lights.group, "Only the group of this name");
    CLI::Option* at = lightsCommand->add_option("--at", lights.at, "Clock value T");
    CLI::Option* from = lightsCommand->add_option("--from", lights.from, "Start of a timeline");
    CLI::Option* to = lightsCommand->add_option("--to", lights.to, "End of the timeline");
    CLI::Option* step = lightsCommand->add_option("--step", lights.step, "Step of the timeline");
    from->needs(to, step)->excludes(at);
    lightsCommand->add_flag("--json", lights.json, "Print as one JSON object");

    OrviaTool::QueryOptions query;
    CLI::App* queryCommand = app.add_subcommand("query", "The 3D frame of a track at (s, t), or along it.");
    queryCommand->add_option("FILE", query.file, "Network file")->required();
    queryCommand->add_option("--track", query.track, "Track name")->required();
    queryCommand->add_option("--s", query.s, "Abscissa (metres)");
    queryCommand->add_option("--t", query.t, "Lateral offset (metres, positive to the right)");
    queryCommand->add_option("--step", query.step, "Sample the whole track every STEP metres");
    queryCommand->add_flag("--json", query.json, "Print the result as one JSON object");

    OrviaTool::LinksOptions links;
    CLI::App* linksCommand =
        app.add_subcommand("links", "List the lane links through an intersection, or those leaving a lane.");
    linksCommand->add_option("FILE", links.file, "Network file")->required();
    CLI::Option* linksAt =
        linksCommand->add_option("--intersection", links.intersection, "Intersection name");
    CLI::Option* linksTrack = linksCommand->add_option("--track", links.track, "Track of the lane to follow");
    bool linksAtEnd = false, linksAtStart = false;
    CLI::Option* linksEnd = linksCommand->add_flag("--end", linksAtEnd, "The lane at the track's end");
    CLI::Option* linksStart =
        linksCommand->add_flag("--start", linksAtStart, "The lane at the track's start");
    CLI::Option* linksLane = linksCommand->add_option("--lane", links.lane, "Lane name");
    linksAt->excludes(linksTrack);
    linksTrack->needs(linksLane);
    linksEnd->excludes(linksStart)->needs(linksTrack);
    linksStart->needs(linksTrack);
    linksCommand->add_flag("--json", links.json, "Print the links as one JSON object");

    OrviaTool::ValidateOptions validate;
    CLI::App* validateCommand =
        app.add_subcommand("validate", "List every problem of a document with its place.");
    validateCommand->add_option("FILE", validate.file, "Network, profile library or rail network file")
        ->required();
    validateCommand->add_flag("--json", validate.json, "Print the problems as one JSON object");

    OrviaTool::FilesOptions files;
    std::vector<std::string> replace;
    CLI::App* filesCommand =
        app.add_subcommand("files", "List the external files a network refers to, check or rewrite them.");
    filesCommand->add_option("FILE", files.file, "Network file")->required();
    filesCommand->add_flag("--check", files.check, "Exit with 1 when a file is missing");
    CLI::Option* filesRelative =
        filesCommand->add_flag("--relative", files.relative, "Make paths relative to the output's directory");
    filesCommand->add_flag("--absolute", files.absolute, "Make paths absolute against FILE's directory")
        ->excludes(filesRelative);
    CLI::Option* output = filesCommand->add_option("-o,--output", files.output, "Save the network to OUT");
    filesCommand->add_option("--replace", replace, "Replace the path OLD by NEW everywhere")
        ->expected(2)
        ->needs(output);
    filesCommand->add_flag("--json", files.json, "Print the listing as one JSON object");

    CLI11_PARSE(app, argc, argv);

    if (*queryCommand) return OrviaTool::RunQuery(query);

    if (*infoCommand) return OrviaTool::RunInfo(info);
    if (*railCommand) return OrviaTool::RunRail(rail);
    if (*profilesCommand) return OrviaTool::RunProfiles(profiles);
    if (*lightsCommand) return OrviaTool::RunLights(lights);
    if (*linksCommand) {
        if (linksAt->count() == 0 && linksTrack->count() == 0) {
            std::fprintf(stderr, "links: give --intersection NAME, or --track T --end|--start --lane L\n");
            return 1;
        }
        if (linksTrack->count() > 0 && linksEnd->count() + linksStart->count() == 0) {
            std::fprintf(stderr, "links: --track needs --end or --start\n");
            return 1;
        }
        links.atEnd = linksAtEnd;
        return OrviaTool::RunLinks(links);
    }
    if (*validateCommand) return OrviaTool::RunValidate(validate);
    if (*filesCommand) {
        if (replace.size() == 2) {
            files.replaceOld = replace[0];
            files.replaceNew = replace[1];
        }
        return OrviaTool::RunFiles(files);
    }
    if (*convertCommand) {
        convert.absolutePaths = absolute->count() > 0;
        return OrviaTool::RunConvert(convert);
    }
    return OrviaTool::RunGeo(geo);
}
