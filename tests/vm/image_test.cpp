#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>

#include <unistd.h>

#include "tests/support/process.h"
#include "tests/support/temporary_folder.h"

namespace {

using std::filesystem::path;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

/// The busybox of the made-up packages. It has one applet, and its cpio prints the names it gets.
constexpr char busybox[] = R"sh(case $1 in
--list) echo ls ;;
depmod) printf 'kernel/sd_mod.ko: kernel/scsi.ko\nkernel/scsi.ko:\nkernel/other.ko:\n' \
    >tree/lib/modules/6.1/modules.dep ;;
cpio) cat ;;
esac)sh";

/// Serves what is in `mirror`, and leaves files alone that have the name and the size of a package.
constexpr char aptGet[] = R"sh(top=${0%/*}/..
echo "$*" >>"$top/apt-get.log"
case " $* " in *' update '*) exit ;; esac
for package in "$top"/mirror/*; do
    name=${package##*/}
    [ "$(stat -c %s "$package")" != "$(stat -c %s "$name" 2>/dev/null)" ] || continue
    case " $* " in
    *' --print-uris '*)
        hash=SHA256
        sum=$(sha256sum <"$top/listed/$name" | cut -c 1-64)
        echo "'http://deb/$name' $name $(stat -c %s "$package") $hash:$sum"
        ;;
    *) cp "$package" . ;;
    esac
done)sh";

/// `image.sh` with a mirror, a cache and an apt-get of the test's own.
class Image : public testing::Test {
protected:
    Image()
    {
        create_directories(top() / "programs");
        create_directory(top() / "mirror");
        create_directory(top() / "caches");
        writeScript(top() / "programs" / "apt-cache", "echo 'Depends: linux-image-6.1 (= 6.1)'");
        writeScript(top() / "programs" / "apt-get", aptGet);
        writeScript(top() / "programs" / "sudo", "exec \"$@\"");
        makePackage(top() / "mirror" / "busybox.deb", {{"bin/busybox", busybox}});
        makePackage(top() / "mirror" / "linux.deb", {{"boot/vmlinuz-6.1", ""},
                                                     {"lib/modules/6.1/kernel/sd_mod.ko", ""},
                                                     {"lib/modules/6.1/kernel/scsi.ko", ""},
                                                     {"lib/modules/6.1/kernel/other.ko", ""}});
        copy(top() / "mirror", top() / "listed");
    }

    path top() const { return path(m_folder.file("x")).parent_path(); }
    path cache() const { return top() / "caches" / "dmpclaim-vm"; }
    path image() const { return top() / "image"; }

    using Contents = std::vector<std::pair<std::string, std::string>>;

    /// A package with these programs.
    void makePackage(const path& package, const Contents& contents) const
    {
        const path tree = top() / "tree-of-package";
        create_directories(tree / "DEBIAN");
        std::ofstream(tree / "DEBIAN" / "control")
            << "Package: x\nVersion: 1\nArchitecture: all\nMaintainer: x\nDescription: x\n";
        for (const auto& [name, script] : contents) {
            create_directories((tree / name).parent_path());
            writeScript(tree / name, script);
        }
        const Result ended = Process({"dpkg-deb", "--build", tree, package}).finish();
        ASSERT_EQ(ended.status, 0) << ended.errors;
        remove_all(tree);
    }

    /// A busybox that writes a file when it runs.
    void makePlanted(const path& package) const
    {
        makePackage(package,
                    {{"bin/busybox", "touch " + planted().string() + "\n" + std::string(busybox)}});
    }
    path planted() const { return top() / "planted-program-ran"; }

    /// Makes the image anew.
    Result make(const std::vector<std::string>& environment = {}) const
    {
        remove_all(image());
        std::vector<std::string> command{
            "env", "--chdir=" + top().string(), "XDG_CACHE_HOME=" + (top() / "caches").string(),
            "PATH=" + (top() / "programs").string() + ":/usr/bin:/bin:/usr/sbin:/sbin"};
        command.insert(command.end(), environment.begin(), environment.end());
        command.insert(command.end(), {VM_IMAGE, image()});
        return Process(command).finish();
    }

    void expectMade() const
    {
        const Result ended = make();
        EXPECT_EQ(ended.status, 0) << ended.errors;
        EXPECT_FALSE(exists(planted()));
    }

    void expectRefused() const
    {
        const Result ended = make();
        EXPECT_EQ(ended.status, 1);
        EXPECT_EQ(ended.errors,
                  "vm: " + cache().string() +
                      " is a symbolic link, or others own it or may write to it: remove it\n");
        EXPECT_THAT(calls(), testing::IsEmpty());
    }

    std::vector<std::string> calls() const { return linesOf(top() / "apt-get.log"); }

    /// How often packages were downloaded.
    auto downloads() const
    {
        const std::vector<std::string> all = calls();
        return std::count_if(all.begin(), all.end(), [](const std::string& call) {
            return call.find(" download linux-image-6.1 busybox-static ") != std::string::npos;
        });
    }

private:
    TemporaryFolder m_folder;
};

TEST_F(Image, ThePackagesAreUnpackedAndThinnedOut)
{
    expectMade();
    EXPECT_TRUE(exists(image() / "vmlinuz"));
    EXPECT_TRUE(exists(image() / "busybox"));
    const std::vector<std::string> names = linesOf(image() / "base.cpio");
    for (const char* name : {"./bin/busybox", "./bin/ls", "./lib/modules/6.1/kernel/sd_mod.ko",
                             "./lib/modules/6.1/kernel/scsi.ko"})
        EXPECT_THAT(names, Contains(name));
    for (const char* name : {"./boot", "./lib/modules/6.1/kernel/other.ko"})
        EXPECT_THAT(names, Not(Contains(name)));
}

TEST_F(Image, PackagesAreDownloadedOnce)
{
    expectMade();
    expectMade();
    EXPECT_EQ(downloads(), 1);
}

TEST_F(Image, NewPackagesTakeThePlaceOfTheOldOnes)
{
    expectMade();
    rename(top() / "mirror" / "linux.deb", top() / "mirror" / "linux-new.deb");
    rename(top() / "listed" / "linux.deb", top() / "listed" / "linux-new.deb");
    expectMade();
    EXPECT_EQ(downloads(), 2);
    EXPECT_FALSE(exists(cache() / "linux.deb"));
}

TEST_F(Image, AChangedPackageInTheCacheIsNotUsed)
{
    expectMade();
    makePlanted(cache() / "busybox.deb");
    expectMade();
    EXPECT_EQ(downloads(), 2);
}

TEST_F(Image, AChangedPackageOfTheSameSizeIsNotUsed)
{
    expectMade();
    const std::uintmax_t size = file_size(cache() / "busybox.deb");
    std::ofstream(cache() / "busybox.deb") << std::string(size, 'x');
    expectMade();
    EXPECT_EQ(downloads(), 2);
}

TEST_F(Image, APackageThatTheListsDoNotNameIsNotUnpacked)
{
    expectMade();
    makePlanted(cache() / "zzz.deb");
    expectMade();
}

TEST_F(Image, ADownloadThatIsNotWhatTheListsSayIsRefused)
{
    makePlanted(top() / "mirror" / "busybox.deb");
    const Result ended = make();
    EXPECT_EQ(ended.status, 1);
    EXPECT_THAT(ended.errors, HasSubstr("busybox.deb: FAILED\n"));
    EXPECT_FALSE(exists(planted()));
    EXPECT_FALSE(exists(image() / "busybox"));
    EXPECT_THAT(calls(), Contains("-qq update"));
}

TEST_F(Image, APackageWithoutAGoodChecksumIsRefused)
{
    std::string script = aptGet;
    script.insert(script.find("sum=$("), "[ $name = busybox.deb ] || hash=MD5Sum\n");
    writeScript(top() / "programs" / "apt-get", script);
    const Result ended = make();
    EXPECT_EQ(ended.status, 1);
    EXPECT_THAT(ended.errors, HasSubstr("1 line is improperly formatted"));
}

TEST_F(Image, ANewCacheIsTheUsersOwn)
{
    const Result ended =
        Process({"sh", "-c", "umask 0 && exec \"$@\"", "sh", "env",
                 "XDG_CACHE_HOME=" + (top() / "caches/a/b").string(),
                 "PATH=" + (top() / "programs").string() + ":/usr/bin:/bin", VM_IMAGE, image()})
            .finish();
    EXPECT_EQ(ended.status, 0) << ended.errors;
    for (const char* name : {"a", "a/b", "a/b/dmpclaim-vm"})
        EXPECT_EQ(status(top() / "caches" / name).permissions(), std::filesystem::perms::owner_all);
}

TEST_F(Image, ACacheThatIsALinkIsRefused)
{
    create_directory(top() / "elsewhere");
    create_directory_symlink(top() / "elsewhere", cache());
    expectRefused();
    EXPECT_TRUE(is_empty(top() / "elsewhere"));
}

TEST_F(Image, ACacheThatOthersMayWriteToIsRefused)
{
    create_directory(cache());
    for (const auto others :
         {std::filesystem::perms::group_write, std::filesystem::perms::others_write}) {
        permissions(cache(), std::filesystem::perms::owner_all | others);
        expectRefused();
    }
}

TEST_F(Image, ACacheOfAnotherAccountIsRefused)
{
    create_directory(cache());
    if (chown(cache().c_str(), 65534, 65534) != 0)
        GTEST_SKIP() << "only root can give a folder away";
    expectRefused();
}

TEST_F(Image, NoLinkInTheCacheIsFollowed)
{
    create_directory(cache());
    permissions(cache(), std::filesystem::perms::owner_all);
    std::ofstream(top() / "victim") << "as it was\n";
    for (const char* name : {"lock", "new", "x.deb"})
        create_symlink(top() / "victim", cache() / name);
    expectMade();
    EXPECT_EQ(textOf(top() / "victim"), "as it was\n");
}

TEST_F(Image, CdpathLeadsNowhereElse)
{
    const path other = top() / "other";
    create_directories(other / "tree" / "boot");
    create_directories(other / "tree" / "bin");
    writeScript(other / "tree" / "bin" / "busybox", "touch " + planted().string());
    const Result ended = make({"CDPATH=" + other.string()});
    EXPECT_EQ(ended.status, 0) << ended.errors;
    EXPECT_TRUE(exists(other / "tree" / "boot"));
    EXPECT_FALSE(exists(planted()));
}

TEST_F(Image, ARelativeCacheFolderIsThatOfTheCaller)
{
    const Result ended = make({"XDG_CACHE_HOME=caches"});
    EXPECT_EQ(ended.status, 0) << ended.errors;
    EXPECT_TRUE(exists(cache() / "busybox.deb"));
}

} // namespace
