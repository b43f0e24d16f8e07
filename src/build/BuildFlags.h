#pragma once

/// What a build is to do, as bits of one number that goes unchanged through the whole engine.
namespace BuildFlags {
enum : int {
    DeleteOutputs = 1, ///< each step that is due deletes its output first
    Force = 2,         ///< everything counts as out of date
    RunNoSteps = 4,    ///< no tool and no user command runs
    Quiet = 8,         ///< up-to-date decisions say nothing
    ThisNodeOnly = 16, ///< children are left alone
    Checking = 64      ///< headers say so
};
constexpr int clean = DeleteOutputs | Force | RunNoSteps;
/// Decides everything and changes nothing.
constexpr int check = RunNoSteps | Checking;
} // namespace BuildFlags

/// What a build came to.
enum class BuildStatus { NothingToDo = 0, Built = 1, Failed = 2, Stopped = 3 };
