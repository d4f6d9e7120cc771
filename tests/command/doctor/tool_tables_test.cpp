// What doctor reads from a table is what the library reads from it.
#include "command/doctor/tool_tables.h"

#include <gmock/gmock.h>

#include "providers/device/scsitool/dmp_nativepath_claim.h"
#include "tests/support/scripted_tools.h"

namespace {

using command::readNode;
using command::readPath;

using Lines = std::vector<std::string>;

constexpr char header[] = "NAME    STATE    TYPE    CTLR";
constexpr char rule[] = "====";
constexpr char active[] = "sda     ENABLED(A)    PRIMARY    c1";
constexpr char enabled[] = "sdb\tENABLED  SECONDARY";
constexpr char primary[] = "  sdc  DISABLED  PRIMARY  c2  more";
constexpr char lost[] = "sdd DISABLED SECONDARY";

const Lines answers[] = {{},
                         {header},
                         {header, rule},
                         {header, active},
                         {rule, active, enabled},
                         {"note", header, rule, active},
                         {"note", rule, active, "NAME"},
                         {header, header, active},
                         {"DISKNAMES", rule, active},
                         {"name", rule, active},
                         {header, rule, "", " \t", enabled, ""},
                         {header, rule, "sde"},
                         {header, rule, "sde", "sdf PRIMARY", lost},
                         {header, rule, active, enabled, primary, lost},
                         {header, rule, lost, primary, enabled, active},
                         {header, rule, lost, primary, enabled},
                         {header, rule, primary, lost},
                         {header, rule, lost, lost},
                         {header, rule, enabled, "sdz ENABLED PRIMARY"},
                         {header, rule, primary, "sdz OFFLINE PRIMARY"},
                         {header, rule, "sdy NOTENABLED(A) x", "sdz ENABLED(A) x"},
                         {header, rule, "sdz FAILED SECONDARY,PRIMARY"},
                         {header, rule, "sdz\r ENABLED(A)\r PRIMARY\r"}};

TEST(ToolTables, ANodeIsTheLibrarys)
{
    for (const Lines& lines : answers) {
        ScriptedTools tools;
        tools.answer("/usr/sbin/kodmpadm   getdmpnode  nodename=x", 0, lines);
        std::string node;
        CKoDMPSupport().getKoVMDiskForOSDiskHandler("x", node);
        EXPECT_EQ(readNode(lines).name, node) << testing::PrintToString(lines);
    }
}

TEST(ToolTables, APathIsTheLibrarys)
{
    for (const Lines& lines : answers) {
        ScriptedTools tools;
        tools.answer("/usr/sbin/kodmpadm   getsubpaths  dmpnodename=x", 0, lines);
        std::string path;
        CKoDMPSupport().getOSDiskHandleForKoVMDisk("x", path);
        EXPECT_EQ(readPath(lines).name, path) << testing::PrintToString(lines);
    }
}

TEST(ToolTables, AnAnswerThatIsNoTableHasAFault)
{
    for (const auto read : {readNode, readPath}) {
        EXPECT_STREQ(read({}).fault, "no table");
        EXPECT_STREQ(read({header}).fault, "no table");
        EXPECT_STREQ(read({rule, active}).fault, "no header");
        EXPECT_STREQ(read({"note", header, rule, active}).fault, "a line before the header");
        EXPECT_EQ(read({header, rule}).fault, nullptr);
        EXPECT_EQ(read({header, rule, lost}).fault, nullptr);
        EXPECT_EQ(read({header, rule, active}).fault, nullptr);
    }
}

TEST(ToolTables, APathIsEnabledByItsState)
{
    EXPECT_TRUE(readPath({header, rule, primary, active}).isEnabled);
    EXPECT_TRUE(readPath({header, rule, primary, enabled}).isEnabled);
    EXPECT_FALSE(readPath({header, rule, primary, lost}).isEnabled);
}

} // namespace
