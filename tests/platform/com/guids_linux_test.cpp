#include <gtest/gtest.h>
#include <windows.h>

#include <objbase.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

TEST(Guids, OfAForkedChildAreNotThoseOfItsParent) {
    GUID first;
    ASSERT_EQ(CoCreateGuid(&first), S_OK);
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const pid_t child = fork();
    GUID own;
    CoCreateGuid(&own);
    if (child == 0) _exit(write(ends[1], &own, sizeof own) == sizeof own ? 0 : 1);
    GUID childs;
    EXPECT_EQ(read(ends[0], &childs, sizeof childs), static_cast<ssize_t>(sizeof childs));
    EXPECT_EQ(waitpid(child, nullptr, 0), child);
    EXPECT_NE(own, childs);
    close(ends[0]);
    close(ends[1]);
}

}  // namespace
