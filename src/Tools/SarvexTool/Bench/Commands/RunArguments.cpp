#include "Tools/SarvexTool/Bench/Commands/RunArguments.h"

#include "Tools/SarvexTool/Bench/Commands/HistoryOptions.h"

namespace Bench {

namespace {

void AddFileOptions(Options app, RunArguments& arguments) {
    app.Add("TEST_FILE", arguments.file, "Test file").TypeName("");
    app.Add("--resume", arguments.resume,
            "Go on with the run in DIR, with its options, after its last finished line")
        .TypeName("DIR");
    app.Add("--out", arguments.out,
            "Folder for the run, one that holds no results; runs/NAME-DATE-TIME without it")
        .TypeName("DIR");
    app.Add("--client", arguments.client, "Another client than the one beside this program")
        .TypeName("PATH");
    app.Add("--limits", arguments.limits, "Hold each measurement against limits as it comes")
        .TypeName("FILE");
    app.AddFlag("--fail-fast", arguments.failFast,
                "End the run after the first line that does not pass or has no power");
    app.AddFlag("--force", arguments.force, "Go on though the test file has errors");
    app.Add("--progress", arguments.progress,
            "text, or json: one JSON object a line on standard output")
        .TypeName("KIND")
        .ShowDefault();
}

void AddPlaceOptions(Options app, RunArguments& arguments) {
    app.Add("--bench", arguments.bench, "The bench's name, kept with the results").TypeName("NAME");
    app.Add("--device", arguments.device, "The device's name, kept with the results")
        .TypeName("NAME");
    app.Add("--attempt", arguments.attempt,
            "Which attempt this is at the same lines, kept with the results")
        .TypeName("N");
    app.Add("--firmware", arguments.firmware, "The device's firmware, kept with the results")
        .TypeName("TEXT");
    app.Add("--note", arguments.note, "What else there is to say, kept with the results")
        .TypeName("TEXT");
}

void AddKeepOptions(Options app, RunArguments& arguments) {
    app.AddFlag("--keep", arguments.keep, "Keep the run in the history when it is complete");
    AddStoreOption(app, arguments.store);
}

void AddDaemonOptions(Options app, RunArguments& arguments) {
    app.Add("--daemon", arguments.daemon,
            "The device's daemon. Without PORT the one in Socket.cfg beside this program")
        .TypeName("HOST[:PORT]")
        .ShowDefault();
    app.Add("--answer-timeout", arguments.answerTimeout,
            "How long the daemon may be silent before an exchange is repeated")
        .TypeName("SECONDS")
        .ShowDefault();
    app.Add("--retries", arguments.retries, "How often an exchange is repeated")
        .TypeName("N")
        .ShowDefault();
    app.Add("--wait", arguments.wait, "How long to wait for a daemon that is gone")
        .TypeName("SECONDS")
        .ShowDefault();
    app.Add("--stop-timeout", arguments.stopTimeout,
            "At the end, how long to wait for the last answer, and then for the stop")
        .TypeName("SECONDS")
        .ShowDefault();
    app.Add("--segment", arguments.segment,
            "How many lines one start of the client runs; 500 without it, fewer where the "
            "system allows few open files")
        .TypeName("LINES");
}

} // namespace

void AddRunOptions(Options app, RunArguments& arguments) {
    AddFileOptions(app, arguments);
    AddDaemonOptions(app, arguments);
    AddPlaceOptions(app, arguments);
    AddKeepOptions(app, arguments);
}

} // namespace Bench
