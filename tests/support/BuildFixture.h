#pragma once

#include "build/MSP430BuildSystem.h"
#include "build/StepListener.h"
#include "macros/MacroSystem.h"
#include "memorymap/MemoryMapOpenFiles.h"
#include "properties/EnvironmentSettings.h"
#include "properties/PropertyValueGroups.h"
#include "support/RecordingBuilder.h"
#include "support/SolutionFixture.h"

/// The bytes of an object file that tells what it was made from, and nothing else.
inline QByteArray objectFrom(const QStringList& dependencies) {
    const auto literal = [](qsizetype value) {
        QByteArray bytes;
        for (qsizetype rest = value; rest > 0; rest >>= 8)
            bytes.prepend(static_cast<char>(rest & 0xFF));
        return value < 8 ? QByteArray(1, static_cast<char>(value))
                         : QByteArray(1, 8) + static_cast<char>(bytes.size()) + bytes;
    };
    const QByteArray key = "dependencies";
    const QByteArray value = toBytes(dependencies.join(';'));
    const auto text = [&](qsizetype offset, const QByteArray& of) {
        return QByteArray(literal(offset) + literal(of.size()) + '\x23');
    };
    const QByteArray module = "\x09\x09\x09\x4A\x4F";
    return literal(key.size() + value.size()) + '\x26' + key + value + module + text(0, key) +
           text(key.size(), value) + "\x51\x66";
}

/// Solutions that are built with files in memory. Sources lie in /s; a tool that compiles leaves an object
/// that names the source and the headers of `headers`.
class BuildFixture : public SolutionFixture {
protected:
    BuildFixture() {
        memoryMapOpenFiles = {};
        projectSystem = &system;
        environment = &settings;
        settings.createEntries();
        macroSystem.setSystemMacro("TarnDir", "/tarn");
        macroSystem.setSystemMacro("PackagesDir", "/packages");
        propertyValueGroups.setGroupFile("None");
        restart();
    }
    ~BuildFixture() override { projectSystem = nullptr; }

    /// A further run of the program: an engine that remembers nothing, and a builder with nothing recorded.
    void restart() {
        builder.reset();
        engine.reset();
        engine = std::make_unique<MSP430BuildSystem>();
        builder = std::make_unique<RecordingBuilder>(memory, *engine);
        builder->contents = [this](const QString& output, const QStringList& words) {
            return contents(output, words);
        };
    }
    void touch(const QString& name) { memory.write("/s/" + name, ""); }
    /// Builds in a further run, a second later than the last.
    BuildStatus build(const QString& config = "Debug", int flags = BuildFlags::Quiet) {
        return build(system.solutionElement(), config, flags);
    }
    BuildStatus build(ProjectElement* element, const QString& config, int flags, bool batch = false) {
        restart();
        builder->failAt = failAt;
        builder->carriesOut = carriesOut;
        memory.tick();
        return engine->build(element, config, builder.get(), flags, true, batch);
    }
    /// What a verbose build logs.
    QStringList verbose(const QString& config = "Debug") {
        build(config, 0);
        return builder->log;
    }
    /// The words of the only command of this program.
    QStringList words(const QString& program) {
        for (const QStringList& command : builder->commands) {
            if (command.first().endsWith("/" + program))
                return command;
        }
        ADD_FAILURE() << program.toStdString() << " did not run";
        return {};
    }

    EnvironmentSettings settings;
    std::unique_ptr<MSP430BuildSystem> engine;
    std::unique_ptr<RecordingBuilder> builder;
    QStringList headers; ///< what every source includes
    int failAt = 0;
    bool carriesOut = true;
    /// What tools write. Objects are called like their sources, which are C.
    virtual QByteArray contents(const QString& output, const QStringList&) {
        if (!output.endsWith(".vko"))
            return {};
        const QString name = output.mid(output.lastIndexOf('/') + 1);
        return objectFrom(QStringList(name.chopped(4) + ".c") + headers);
    }
};
