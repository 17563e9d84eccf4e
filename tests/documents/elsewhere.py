"""The shell commands in the documents that the tests do not run: why not, and what runs them instead."""

CHORE = "installs packages or builds for minutes"
BY_HAND = "by hand, before a change that it checks; its name and options are compared with ./dev help"

#   command                          why it is not run here                       where it is run
NOT_RUN_HERE = {
    "./dev demo":                   (CHORE, "by hand in a bare Debian 12, see CONTRIBUTING.md; the player: tests/play"),
    "./dev gallery":                (CHORE, "by hand; the commands that it types: tests/documents/gallery_test.py"),
    "./dev test":                   (CHORE, ".ci/run"),
    "./dev test --sanitizers":      (CHORE, ".ci/run"),
    "./dev test --quick":           (CHORE, "the same tests as ./dev test, in the dev preset"),
    "./dev test --exhaustive":      (CHORE, BY_HAND),
    "./dev build":                  (CHORE, BY_HAND),
    "./dev fuzz 600":               (CHORE, BY_HAND),
    "./dev soak --minutes 60":      (CHORE, BY_HAND),
    "./dev displays":               (CHORE, BY_HAND),
    "./dev aarch64":                (CHORE, BY_HAND),
    "./dev windows":                (CHORE, ".ci/run"),
    "./dev bench --peers":          (CHORE, BY_HAND),
    "./dev bench --instructions":   (CHORE, ".ci/run"),
    "./dev package":                (CHORE, ".ci/run"),
    "./dev package --try":          (CHORE, BY_HAND),
    "./dev check":                  (CHORE, ".ci/run"),
    "./dev coverage":               (CHORE, BY_HAND),
    "./dev format":                 ("changes the sources", BY_HAND),
    "sudo apt install ./build/package/*.deb": ("installs", "packaging/trial, by ./dev package --try"),
    "pip install bindings/python":  ("installs", "tests/python/install_test.py"),
}
