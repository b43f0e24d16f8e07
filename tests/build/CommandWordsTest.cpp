#include "support/BuildFixture.h"

using ::testing::ElementsAre;
using ::testing::IsSupersetOf;

namespace {

/// A setting, or several in the form of attributes, and what they do to the words of a command.
struct Row {
    const char* attributes;
    QStringList added = {};
    QStringList removed = {};
};

} // namespace

class CommandWordsTest : public BuildFixture {
protected:
    /// The command of this program that a project with these attributes makes of main.c, boot.asm and
    /// basic.bas.
    QStringList command(const std::string& attributes, const QString& program) {
        load("<project Name=\"p\"><configuration Name=\"Common\" " + attributes +
             "/><file file_name=\"main.c\"/><file file_name=\"boot.asm\"/>"
             "<file file_name=\"b.bas\"><configuration Name=\"Common\" "
             "file_type=\"Basic\"/></file></project>");
        for (const char* source : {"main.c", "boot.asm", "b.bas"})
            touch(source);
        build("Debug", BuildFlags::Quiet | BuildFlags::Force);
        return words(program);
    }
    /// Compares each row's command with that of no attributes.
    void check(const QString& program, const std::vector<Row>& rows) {
        const QStringList plain = command("", program);
        for (const Row& row : rows) {
            QStringList added = command(row.attributes, program);
            QStringList removed = plain;
            for (const QString& word : plain)
                added.removeOne(word);
            for (const QString& word : command(row.attributes, program))
                removed.removeOne(word);
            EXPECT_EQ(added, row.added) << row.attributes;
            EXPECT_EQ(removed, row.removed) << row.attributes;
        }
    }
};

TEST_F(CommandWordsTest, PlainCommandsHaveTheirWordsInOrder) {
    const QStringList release = {"-D__OSTREL", "-D__OSTREL_MAJOR_VERSION=2", "-D__OSTREL_MINOR_VERSION=0",
                                 "-D__OSTREL_REVISION=7"};
    const QStringList includes = {"-I.", "-J/tarn/include", "-J/packages/include"};
    const QStringList compiler =
        QStringList("/tarn/bin/qcomp") + release + QStringList{"-g", "-O-9", "-Orl"} + includes +
        QStringList{"-ansi", "-msd", "main.c", "-o", "Debug/main.vko", "-D__OSTREL_MSP430"};
    EXPECT_EQ(command("", "qcomp"), compiler);
    const QStringList assembler = QStringList("/tarn/bin/qasm") + release + QStringList("-g") + includes +
                                  QStringList{"boot.asm", "-o", "Debug/boot.vko", "-D__OSTREL_MSP430"};
    EXPECT_EQ(words("qasm"), assembler);
    const QStringList basic = QStringList("/tarn/bin/qbas") + release + QStringList{"-g", "-O-9", "-Orl"} +
                              includes + QStringList{"-msd", "b.bas", "-o", "Debug/b.vko"};
    EXPECT_EQ(words("qbas"), basic);
    EXPECT_THAT(
        words("qlink"),
        ElementsAre("/tarn/bin/qlink", "Debug/main.vko", "Debug/boot.vko", "Debug/b.vko", "-g",
                    "/tarn/lib/libc_soft_single.vka", "/tarn/lib/libm_soft_single.vka",
                    "/tarn/lib/libdebugio_soft_single.vka", "/tarn/lib/libc_targetio_impl_soft_single.vka",
                    "/tarn/lib/lib_vfprintf_int_soft_single.vka", "/tarn/lib/lib_vfscanf_int_soft_single.vka",
                    "/tarn/lib/libc_user_libc_soft_single.vka", "-Oph", "-Ofl", "-Odc", "-Ojt",
                    "-MDebug/p.map", "-o", "Debug/p.vkx"));
    EXPECT_EQ(builder->directory(), "/s");
}

TEST_F(CommandWordsTest, SettingsAddWordsToTheCompiler) {
    check("qcomp",
          {{"c_preprocessor_definitions=\"A=1;B=x\\;y;$(ProjectName)\"", {"-DA=1", "-DB=x;y", "-Dp"}},
           {"c_preprocessor_undefinitions=\"U;$(ProjectName)\"", {"-UU", "-Up"}},
           {"c_additional_options=\"-x;-y z\"", {"-x", "-y z"}},
           {"asm_additional_options=\"-x\""},
           {"build_quietly=\"\"", {"-V"}},
           {"c_undefine_all_preprocessor_definitions=\"Yes\"",
            {},
            {"-D__OSTREL", "-D__OSTREL_MAJOR_VERSION=2", "-D__OSTREL_MINOR_VERSION=0",
             "-D__OSTREL_REVISION=7", "-D__OSTREL_MSP430"}},
           {"build_debug_information=\"No\"", {}, {"-g"}},
           {"build_treat_warnings_as_errors=\"Yes\"", {"-we"}},
           {"build_suppress_warnings=\"Yes\"", {"-w"}},
           {"compiler_optimization_strategy=\"Maximize speed\"", {"-O+9"}, {"-O-9"}},
           {"optimize_register_allocation=\"None\"", {"-Or-"}, {"-Orl"}},
           {"optimize_register_allocation=\"Locals and Globals\"", {"-Org"}, {"-Orl"}},
           {"optimize_register_allocation=\"other\"", {}, {"-Orl"}},
           {"default_code_section=\" CODE \" default_data_section=\"  \" default_zeroed_section=\" Z \" "
            "default_const_section=\"K\" default_vector_section=\"V\"",
            {"-Rz,Z", "-Rk,K", "-Rv,V"}},
           {"default_code_section=\"C\" default_data_section=\"D\"", {"-Rc,C", "-Rd,D"}},
           {"c_user_include_directories=\"$(ProjectName);b\\;c\"", {"-Ip", "-Ib\\", "-Ic"}, {"-I."}},
           {"c_ignore_includes=\"Yes\"", {}, {"-I.", "-J/tarn/include", "-J/packages/include"}},
           {"c_enforce_ansi_checking=\"No\"", {}, {"-ansi"}},
           {"double_is_float=\"No\"", {}, {"-msd"}},
           {"build_use_hardware_multiplier=\"Yes\"", {"-mmpy"}},
           {"build_use_hardware_multiplier=\"Inline\"", {"-mmpyinl"}},
           {"msp430_insn_set=\"MSP430X\"", {"-mcpux"}},
           {"build_object_file_name=\"$(InputName).o\"", {"main.o"}, {"Debug/main.vko"}}});
}

TEST_F(CommandWordsTest, AssemblerAndBasicCompilerTakeFewerWords) {
    const std::string all = "asm_additional_options=\"-a\" c_additional_options=\"-c\" "
                            "build_use_hardware_multiplier=\"Inline\" msp430_insn_set=\"MSP430X\" "
                            "default_code_section=\"C\"";
    check("qasm", {{all.c_str(), {"-a", "-Rc,C", "-mcpux"}}});
    check("qbas", {{all.c_str(), {"-c", "-Rc,C"}}});
}

TEST_F(CommandWordsTest, SettingsAddWordsToTheLinker) {
    check(
        "qlink",
        {{"build_quietly=\"No\" build_treat_warnings_as_errors=\"Yes\" build_suppress_warnings=\"Yes\"",
          {"-V", "-we", "-w"}},
         {"optimize_cross_calling=\"Standard\"", {"-Oxc=6"}},
         {"optimize_cross_calling=\"Maximum\" linker_cross_call_minimum_subroutine_size=\"9\"", {"-Oxcx=9"}},
         {"linker_cross_call_maximum_passes=\"3\"", {"-Oxcp=3"}},
         {"optimize_cross_jumping=\"Yes\" optimize_tail_merging=\"Yes\" optimize_jump_chaining=\"Yes\" "
          "optimize_code_motion=\"Yes\" optimize_block_locality=\"Yes\" optimize_copy_propagation=\"Yes\"",
          {"-Oxj", "-Otm", "-Ojc", "-Ocm", "-Obl", "-Ocp"}},
         {"optimize_peepholes=\"No\" optimize_flattening=\"No\" optimize_dead_code=\"No\" "
          "optimize_jump_threading=\"No\"",
          {},
          {"-Oph", "-Ofl", "-Odc", "-Ojt"}},
         {"linker_checksum_sections=\"A;B\"", {"-HA,B=crc16"}},
         {"link_symbol_definitions=\"a=1;b=$(X)\"", {"-Da=1", "-Db=$(X)"}},
         {"linker_heap_size=\"128\"", {"-Dheap_size=128"}},
         {"linker_heap_size=\"0x80\""},
         {"linker_additional_options=\"-q;$(ProjectName)\"", {"-q", "p"}},
         {"linker_keep_symbols=\"k;l\"", {"-Kk", "-Kl"}},
         {"linker_map_file=\"No\"", {}, {"-MDebug/p.map"}},
         {"build_output_file_name=\"x.y.vkx\"", {"-M./x.y.map", "x.y.vkx"}, {"-MDebug/p.map", "Debug/p.vkx"}},
         {"linker_additional_files=\"a.vko;$(ProjectName).vka\"", {"a.vko", "p.vka"}},
         {"msp430_insn_set=\"MSP430\" link_msp430_workaround_CPU_6_bug=\"Yes\"", {"-fcpu6"}}});
}

TEST_F(CommandWordsTest, LibrariesFollowWhatTheProgramNeeds) {
    const auto libraries = [this](const std::string& attributes) {
        QStringList names = command(attributes, "qlink").filter("/lib/").replaceInStrings("/tarn/lib/", "");
        return names.replaceInStrings(".vka", "").join(' ');
    };
    EXPECT_EQ(libraries("link_include_standard_libraries=\"No\""), "");
    EXPECT_EQ(libraries("link_IOLibraryName=\"none\" link_use_multi_threaded_libraries=\"Yes\" "
                        "build_use_hardware_multiplier=\"16-Bit Multiplier\" double_is_float=\"No\""),
              "libc_hw16_double libm_hw16_double libdebugio_hw16_double lib_vfprintf_int_hw16_double "
              "lib_vfscanf_int_hw16_double");
    EXPECT_THAT(libraries("link_IOLibraryName=\"debug\" build_use_hardware_multiplier=\"32-Bit Multiplier\" "
                          "msp430_insn_set=\"MSP430X\"")
                    .toStdString(),
                ::testing::HasSubstr("libdebugio_hw32_single_cpux libc_debugio_impl_hw32_single_cpux "));
}

TEST_F(CommandWordsTest, VariantsOfPrintfAndScanf) {
    struct Variant {
        const char* floatingPoint;
        const char* isFloat;
        const char* level;
        const char* name;
        bool hasSuffix; ///< of printf without width
    };
    const Variant variants[] = {{"Yes", "Yes", "int", "float_long", false},
                                {"Yes", "Yes", "", "float_long", false},
                                {"Yes", "Yes", "long long", "float_long_long", false},
                                {"Yes", "No", "int", "double_long_long", false},
                                {"No", "Yes", "int", "int", true},
                                {"No", "No", "long", "long", true},
                                {"No", "No", "long long", "long_long", true},
                                {"", "", "short", "", true}};
    for (const Variant& v : variants) {
        const auto attribute = [](const char* name, const char* value) {
            return std::string(name) + "=\"" + value + "\" ";
        };
        const std::string types =
            attribute("linker_printf_fp_enabled", v.floatingPoint) +
            attribute("linker_scanf_fp_enabled", v.floatingPoint) + attribute("double_is_float", v.isFloat) +
            attribute("linker_printf_fmt_level", v.level) + attribute("linker_scanf_fmt_level", v.level);
        const QString name = v.name;
        load("<project Name=\"p\"><configuration Name=\"Common\" " + types + "/></project>");
        EXPECT_EQ(engine->getPrintfVariant(node("p"), "D"), name);
        EXPECT_EQ(engine->getScanfVariant(node("p"), "D"), name);
        load("<project Name=\"p\"><configuration Name=\"Common\" " + types +
             "linker_printf_width_precision_supported=\"No\" "
             "linker_scanf_character_group_matching_enabled=\"Yes\"/></project>");
        EXPECT_EQ(engine->getPrintfVariant(node("p"), "D"), v.hasSuffix ? name + "_nwp" : name);
        EXPECT_EQ(engine->getScanfVariant(node("p"), "D"), name + "_cc");
    }
}

TEST_F(CommandWordsTest, ConversionAndListingRunBehindTheLink) {
    command("linker_output_format=\"hex\" linker_absolute_listing=\"Yes\" "
            "build_output_file_name=\"out/p.vkx\"",
            "qlink");
    EXPECT_THAT(builder->log.mid(builder->log.indexOf("Linking p.vkx") + 2),
                ElementsAre("/s> /tarn/bin/qcvt out/p.vkx -o out/p -Fhex",
                            "/s> /tarn/bin/qlst out/p.vkx -o out/p.lst"));
    EXPECT_THAT(builder->outputs,
                IsSupersetOf({QString("/s/out/p.vkx"), QString("/s/out/p.hex"), QString("/s/out/p.lst")}));
    command("linker_output_format=\"vkx\"", "qlink");
    EXPECT_THAT(builder->log.last().toStdString(), ::testing::StartsWith("/s> /tarn/bin/qlink"));
}

TEST_F(CommandWordsTest, TargetOfThePropertyGroupsIsDefined) {
    memory.write("/s/groups.xml", "<groups><group name=\"Target\" default=\"X1\"><groupEntry name=\"X1\"/>"
                                  "<groupEntry name=\"X2\"/></group></groups>");
    EXPECT_THAT(command("property_groups_file_path=\"/s/groups.xml\" Target=\"X2\"", "qcomp"),
                IsSupersetOf({QString("-D__TARGET_PROCESSOR=X2")}));
    EXPECT_EQ(words("qcomp").indexOf("-D__TARGET_PROCESSOR=X2"),
              words("qcomp").indexOf("-D__OSTREL_REVISION=7") + 1);
}

TEST_F(CommandWordsTest, PreprocessingLeavesMacrosAndEscapesAsTheyAre) {
    load("<project Name=\"p\"><configuration Name=\"Common\" c_preprocessor_definitions=\"A=x\\;y;$(B)\"/>"
         "<file file_name=\"d/m.n.c\"/></project>");
    EXPECT_EQ(engine->preprocess(node("m.n.c"), "Debug", builder.get()), "/s/d/m.n_PP.c");
    EXPECT_THAT(words("qcomp"),
                ElementsAre("/tarn/bin/qcomp", "-E", "-DA=x\\", "-Dy", "-D$(B)", "-D__OSTREL",
                            "-D__OSTREL_MAJOR_VERSION=2", "-D__OSTREL_MINOR_VERSION=0",
                            "-D__OSTREL_REVISION=7", "-I.", "-J/tarn/include", "-J/packages/include",
                            "-D__OSTREL_MSP430", "/s/d/m.n.c", "-o", "/s/d/m.n_PP.c"));
}
