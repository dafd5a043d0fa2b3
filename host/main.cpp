#include "host/command_line.h"
#include "tool/tool_api.h"

#include <iostream>

namespace {

using namespace selfreport;

const ToolStreams streams{std::cout, std::cerr};

struct Carry {
    int operator()(const Finished& finished) const { return finished.exitCode; }
    int operator()(const WindowCommand& window) const { return toolWindow(window.database, streams); }
    int operator()(const DemoCommand& demo) const { return toolDemo(demo.file, demo.replaces, streams); }
    int operator()(const ListCommand& list) const { return toolList(list.database, streams); }
    int operator()(const RunCommand& run) const
    {
        return toolRun(run.database, run.reportId,
                       {run.pdf, run.csv, run.allowFailed, run.isStrict, run.isArchive}, streams);
    }
    int operator()(const CheckCommand& check) const { return toolCheck(check.database, streams); }
    int operator()(const ProveCommand& prove) const
    {
        return toolProve(prove.database, prove.year, prove.asJson, streams);
    }
    int operator()(const ExplainCommand& explain) const
    {
        return toolExplain(explain.database, explain.reportId, explain.cell, explain.depth, explain.asJson,
                           streams);
    }
    int operator()(const FunctionsCommand&) const { return toolFunctions(streams); }
    int operator()(const ConvertCommand& convert) const
    {
        return toolConvert(convert.input, convert.output, convert.recalculates, streams);
    }
};

} // namespace

int main(int count, char** arguments)
{
    return std::visit(Carry{}, readCommandLine(count, arguments));
}
