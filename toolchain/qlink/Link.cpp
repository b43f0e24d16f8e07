#include "toolchain/qlink/Link.h"

#include "foundation/HException.h"
#include "toolchain/qlink/LinkImage.h"
#include "toolchain/qlink/LinkInputs.h"
#include "toolchain/qlink/LinkLayout.h"
#include "toolchain/qlink/MapFile.h"

std::optional<LinkResult> linkInMemory(Tool& tool, const LinkOptions& options) {
    if (options.inputs.empty())
        throw HException("an object file expected");
    if (options.output.empty())
        throw HException("-o and a file expected");
    Pool pool;
    const CurrentPool current(&pool);
    LinkInputs inputs(tool, options);
    inputs.load();
    if (tool.hasFailed())
        return {};
    LinkLayout layout(tool, options, inputs);
    layout.lay();
    if (tool.hasFailed())
        return {};
    const Executable program = makeExecutable(tool, options, inputs, layout);
    if (tool.hasFailed())
        return {};
    return LinkResult{elfBytes(program),
                      options.mapFile.empty() ? std::string() : mapText(options.output, layout, program)};
}

bool linkProgram(Tool& tool, const LinkOptions& options) {
    const std::optional<LinkResult> result = linkInMemory(tool, options);
    if (!result)
        return false;
    if (!options.mapFile.empty())
        writeOutput(options.mapFile, result->map);
    writeOutput(options.output, result->executable); // last: a new executable has its map beside it
    return true;
}
