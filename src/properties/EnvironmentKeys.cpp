#include "properties/EnvironmentKeys.h"

// The builder reads two of these; the others belong to an interactive front end that shares the settings
// file. What they hold is carried as it stands, so their types say little, and most have no default here.

namespace {

constexpr EnvironmentKey environmentMainWindow[] = {{"State", PropertyClass::Custom},
                                                    {"Geometry", PropertyClass::Custom},
                                                    {"Toolbar State", PropertyClass::Custom}};

constexpr EnvironmentKey environment[] = {{"Bookmarks", PropertyClass::Custom},
                                          {"Error Display Timeout", PropertyClass::Integer},
                                          {"Splash Screen", PropertyClass::Boolean},
                                          {"Max Window Menu Items", PropertyClass::Integer},
                                          {"Startup Action", PropertyClass::String},
                                          {"Permit Multiple Tarn Instances", PropertyClass::Boolean},
                                          {"Status Bar", PropertyClass::Boolean},
                                          {"Size Display Unit", PropertyClass::String},
                                          {"Error Display Mode", PropertyClass::String},
                                          {"Number Menus", PropertyClass::Boolean},
                                          {"Show Selector", PropertyClass::Boolean},
                                          {"Application Main Font", PropertyClass::Font},
                                          {"Application Monospace Font", PropertyClass::FixedPitchFont},
                                          {"Show Transcript On Build", PropertyClass::Boolean},
                                          {"Show Debug Terminal", PropertyClass::Boolean},
                                          {"Clear Debug Terminal On Run", PropertyClass::Boolean},
                                          {"External Web Browser", PropertyClass::FileName}};

constexpr EnvironmentKey textEditor[] = {{"Code Templates", PropertyClass::Custom},
                                         {"Color Scheme", PropertyClass::String},
                                         {"Backup File Depth", PropertyClass::Integer},
                                         {"HScroll Bar", PropertyClass::String},
                                         {"VScroll Bar", PropertyClass::String},
                                         {"Mini Toolbar", PropertyClass::Boolean},
                                         {"Copy On Mouse Select", PropertyClass::Boolean},
                                         {"Paste On Mouse Middle Button", PropertyClass::Boolean},
                                         {"Icon Gutter", PropertyClass::Boolean},
                                         {"Drag Drop Editing", PropertyClass::Boolean},
                                         {"Context Bar", PropertyClass::Boolean},
                                         {"Delete Trailing Space On Save", PropertyClass::Boolean},
                                         {"Cleanup Tabs On Save", PropertyClass::Boolean},
                                         {"Column Mode Tab", PropertyClass::Integer},
                                         {"Spell Checking", PropertyClass::Boolean},
                                         {"Enable Popup Diagnostics", PropertyClass::Boolean},
                                         {"Bold Popup Diagnostics", PropertyClass::Boolean},
                                         {"Diagnostic Cycle Mode", PropertyClass::String},
                                         {"Highlight Cursor Line", PropertyClass::Boolean},
                                         {"Font", PropertyClass::FixedPitchFont},
                                         {"Confirm Modified File Reload", PropertyClass::Boolean},
                                         {"Numeric Keypad Enabled", PropertyClass::Boolean},
                                         {"Cut Action", PropertyClass::String},
                                         {"Copy Action", PropertyClass::String},
                                         {"Hide Cursor When Typing", PropertyClass::Boolean},
                                         {"Ibeam cursor", PropertyClass::Boolean},
                                         {"Auto Expand Templates", PropertyClass::Boolean},
                                         {"Enable Virtual Space", PropertyClass::Boolean},
                                         {"Insert Caret Style", PropertyClass::String},
                                         {"Overwrite Caret Style", PropertyClass::String},
                                         {"Line Number Mode", PropertyClass::String},
                                         {"Mate Matching Mode", PropertyClass::String},
                                         {"Diagnostic Icons", PropertyClass::Boolean},
                                         {"Edit Read Only", PropertyClass::Boolean},
                                         {"Undo Mode", PropertyClass::String}};

constexpr EnvironmentKey environmentMacros[] = {{"Global Macros", PropertyClass::StringList}};

constexpr EnvironmentKey environmentCallStack[] = {{"Show Parameter Names", PropertyClass::Boolean},
                                                   {"Show Parameter Values", PropertyClass::Boolean},
                                                   {"Show Parameter Types", PropertyClass::Boolean},
                                                   {"Show Call Location", PropertyClass::Boolean},
                                                   {"Show Call Address", PropertyClass::Boolean}};

constexpr EnvironmentKey environmentGeneralStatusBar[] = {
    {"Show Target", PropertyClass::Boolean},      {"Show Build Status", PropertyClass::Boolean},
    {"Show Insert Mode", PropertyClass::Boolean}, {"Show Caret Pos", PropertyClass::Boolean},
    {"Show Read Only", PropertyClass::Boolean},   {"Show Caps Lock", PropertyClass::Boolean},
    {"Show Num Lock", PropertyClass::Boolean},    {"Show Scroll Lock", PropertyClass::Boolean},
    {"Show Time", PropertyClass::Boolean},        {"Show Size Grip", PropertyClass::Boolean}};

constexpr EnvironmentKey environmentGeneral[] = {{"Large Icons", PropertyClass::Boolean},
                                                 {"Solution Directory", PropertyClass::DirPath},
                                                 {"Project Templates", PropertyClass::FileName},
                                                 {"Step Using Hardware Step", PropertyClass::Boolean},
                                                 {"Property View Details", PropertyClass::String},
                                                 {"Properties Displayed", PropertyClass::String},
                                                 {"Skin", PropertyClass::String},
                                                 {"Quick Open Directories", PropertyClass::StringList},
                                                 {"Document Grouping", PropertyClass::String},
                                                 {"Document Title Format", PropertyClass::String}};

constexpr EnvironmentKey environmentProjectExplorer[] = {
    {"Sync Editor", PropertyClass::Boolean},
    {"Statistics Display", PropertyClass::String},
    {"Statistics Format", PropertyClass::String},
    {"Statistics Read-Only Data Handling", PropertyClass::String},
    {"Dependencies Display", PropertyClass::String},
    {"Properties Display", PropertyClass::String},
    {"Common Properties Display", PropertyClass::String},
    {"Show Output Files", PropertyClass::Boolean},
    {"Show Source Code Control Status", PropertyClass::Boolean},
    {"Filename Replace Macros", PropertyClass::StringList}};

constexpr EnvironmentKey environmentWindows[] = {{"Show Sizes", PropertyClass::Boolean},
                                                 {"Grouping", PropertyClass::String}};

constexpr EnvironmentKey textEditorFind[] = {{"History", PropertyClass::StringList},
                                             {"Match Whole Word", PropertyClass::Boolean},
                                             {"Match Case", PropertyClass::Boolean},
                                             {"Use RegExp", PropertyClass::Boolean},
                                             {"Search Up", PropertyClass::Boolean},
                                             {"Keep Find Dialog Open", PropertyClass::Boolean},
                                             {"Use Find and Replace Window", PropertyClass::Boolean}};

constexpr EnvironmentKey textEditorReplace[] = {{"History", PropertyClass::StringList}};

constexpr EnvironmentKey textEditorMargins[] = {{"Enabled", PropertyClass::Boolean},
                                                {"Left", PropertyClass::Integer},
                                                {"Right", PropertyClass::Integer},
                                                {"Top", PropertyClass::Integer},
                                                {"Bottom", PropertyClass::Integer}};

constexpr EnvironmentKey findInFiles[] = {
    {"File Type", PropertyClass::String},         {"Folder History", PropertyClass::StringList},
    {"Match Whole Word", PropertyClass::Boolean}, {"Match Case", PropertyClass::Boolean},
    {"Use RegExp", PropertyClass::Boolean},       {"Look In Subfolders", PropertyClass::Boolean}};

constexpr EnvironmentKey environmentPrinting[] = {
    {"Left Margin", PropertyClass::Integer}, {"Right Margin", PropertyClass::Integer},
    {"Top Margin", PropertyClass::Integer},  {"Bottom Margin", PropertyClass::Integer},
    {"Orientation", PropertyClass::String},  {"Page Size", PropertyClass::String}};

constexpr EnvironmentKey environmentBuild[] = {
    {"Tool Chain Root Directory", PropertyClass::String, "$(TarnDir)"},
    {"Inhibit Debugger Stop Dialog", PropertyClass::Boolean},
    {"Show Command Lines", PropertyClass::Boolean},
    {"Show Unparsed Error Output", PropertyClass::Boolean},
    {"Build Before Debug", PropertyClass::Boolean},
    {"Find Error After Build", PropertyClass::Boolean},
    {"Save Project File On Build", PropertyClass::Boolean},
    {"Show Build Information", PropertyClass::Boolean}};

constexpr EnvironmentKey environmentDebugger[] = {
    {"Default Variable Display Mode", PropertyClass::String},
    {"Maximum Array Elements Displayed", PropertyClass::Integer},
    {"Maximum Backtrace Calls", PropertyClass::Integer},
    {"Array Elements Prompt Size", PropertyClass::Integer},
    {"Floating Point Format Display", PropertyClass::String},
    {"Display Char Ptr As String", PropertyClass::Boolean},
    {"Source Path", PropertyClass::StringList},
    {"Initial Breakpoint", PropertyClass::String},
    {"Set Initial Breakpoint", PropertyClass::Boolean},
    {"Clear Disassembly Breakpoint", PropertyClass::Boolean},
    {"Disassembly Show Labels", PropertyClass::Boolean},
    {"Close Disassembly On Mode Switch", PropertyClass::Boolean},
    {"Disassembly Show Source", PropertyClass::Boolean},
    {"Restart Resets Target", PropertyClass::Boolean},
    {"Locals Display Registers", PropertyClass::Boolean}};

constexpr EnvironmentKey environmentDebuggerExtendedTooltipDisplayMode[] = {
    {"ASCII", PropertyClass::Boolean},
    {"Binary", PropertyClass::Boolean},
    {"Octal", PropertyClass::Boolean},
    {"Decimal", PropertyClass::Boolean},
    {"Unsigned Decimal", PropertyClass::Boolean},
    {"Hexadecimal", PropertyClass::Boolean}};

constexpr EnvironmentKey environmentSourceCodeControl[] = {
    {"Enabled", PropertyClass::Boolean},
    {"Provider", PropertyClass::String},
    {"InhibitAddDialog", PropertyClass::Boolean},
    {"InhibitCheckoutDialog", PropertyClass::Boolean},
    {"InhibitCheckinDialog", PropertyClass::Boolean},
    {"InhibitCheckoutOnEditDialog", PropertyClass::Boolean},
    {"InhibitGetLatestDialog", PropertyClass::Boolean},
    {"InhibitUndoCheckoutDialog", PropertyClass::Boolean},
    {"DiffCommand", PropertyClass::String},
    {"MergeCommand", PropertyClass::String}};

constexpr EnvironmentKey debugging[] = {{"Show Transcript On Load", PropertyClass::Boolean},
                                        {"Hide Transcript On Successful Load", PropertyClass::Boolean}};

constexpr EnvironmentKey environmentClipboardRing[] = {{"Contents", PropertyClass::StringList},
                                                       {"Max Entries", PropertyClass::Integer},
                                                       {"Save", PropertyClass::Boolean}};

constexpr EnvironmentKey environmentInternet[] = {
    {"Enable Debugging", PropertyClass::Boolean},    {"RSS Update", PropertyClass::String},
    {"Check Updates", PropertyClass::String},        {"Check Packages", PropertyClass::String},
    {"HTTP Proxy Port", PropertyClass::Integer},     {"HTTP Proxy Server", PropertyClass::String},
    {"Download History", PropertyClass::StringList}, {"Max Download History Items", PropertyClass::Integer}};

constexpr EnvironmentKey environmentBrowser[] = {{"Underline Web Links", PropertyClass::Boolean},
                                                 {"Text Size", PropertyClass::Integer}};

constexpr EnvironmentKey environmentPackage[] = {{"Source Directory", PropertyClass::DirPath},
                                                 {"Source URL", PropertyClass::String},
                                                 {"Destination Directory", PropertyClass::DirPath}};

constexpr EnvironmentKeyGroup groups[] = {
    {"Environment/Main Window/", "(Internal)", "(Internal)", environmentMainWindow},
    {"Environment/", "Environment", "Environment", environment},
    {"Text Editor/", "Text Editor", "Text Editor", textEditor},
    {"Environment/Macros/", nullptr, nullptr, environmentMacros},
    {"Environment/Call Stack/", "Call Stack", "Call Stack", environmentCallStack},
    {"Environment/General/Status Bar/", "Status Bar", "Status Bar", environmentGeneralStatusBar},
    {"Environment/General/", "General", "General", environmentGeneral},
    {"Environment/Project Explorer/", "Project Explorer", "Project Explorer", environmentProjectExplorer},
    {"Environment/Windows/", "Windows", "Windows", environmentWindows},
    {"Text Editor/Find/", "(Internal)", "(Internal)", textEditorFind},
    {"Text Editor/Replace/", "(Internal)", "(Internal)", textEditorReplace},
    {"Text Editor/Margins/", "Printing", "Printing", textEditorMargins},
    {"Find In Files/", "(Internal)", "(Internal)", findInFiles},
    {"Environment/Printing/", "Printing", "Printing", environmentPrinting},
    {"Environment/Build/", "Building", "Build Options", environmentBuild},
    {"Environment/Debugger/", "Debugger", "Debugger", environmentDebugger},
    {"Environment/Debugger/Extended Tooltip Display Mode/", "Debugger", "Debugger",
     environmentDebuggerExtendedTooltipDisplayMode},
    {"Environment/Source Code Control/", "Source Code Control", "Source Code Control",
     environmentSourceCodeControl},
    {"Debugging/", "Debugger", "Debugger", debugging},
    {"Environment/Clipboard Ring/", "Clipboard Ring", "Clipboard Ring", environmentClipboardRing},
    {"Environment/Internet/", "Internet", "Internet", environmentInternet},
    {"Environment/Browser/", "Browser", "Browser", environmentBrowser},
    {"Environment/Package/", "Package", "Package", environmentPackage}};

} // namespace

std::span<const EnvironmentKeyGroup> environmentKeyGroups() { return groups; }
