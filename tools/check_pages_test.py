#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""check_pages_test.py: check_pages.py finds what is wrong with a page, and nothing else."""

import pathlib
import subprocess
import sys
import tempfile

PAGE = """[there](tool.sh), [a site](https://example.org), ![gone](gone.png)

<!-- tool.sh -->
```sh
echo {shown}
```

```cpp
list[](missing);
```

<!-- nowhere.cpp -->
```cpp
```
"""

with tempfile.TemporaryDirectory() as name:
    root = pathlib.Path(name)
    (root / "tool.sh").write_text("# SPDX-License-Identifier: MIT\n\necho yes\n")
    (root / "docs").mkdir()
    (root / "docs" / "README.md").write_text("[the page](page.md)")
    (root / "docs" / "page.md").write_text("[back](../right.md)")
    (root / "docs" / "lost.md").touch()
    (root / "right.md").write_text(PAGE.format(shown="yes"))
    (root / "wrong.md").write_text(PAGE.format(shown="no"))
    checker = pathlib.Path(__file__).with_name("check_pages.py")
    def check(*options):
        run = subprocess.run([sys.executable, "-B", checker, *options, root], capture_output=True, text=True)
        return run.stderr.splitlines()

    found = check()
    renewed = check("--renew")

want = ["right.md: there is no nowhere.cpp", "right.md: there is no gone.png",
        "wrong.md: its program differs from tool.sh; ./dev docs copies it again",
        "wrong.md: there is no nowhere.cpp", "wrong.md: there is no gone.png",
        "docs/README.md: does not name docs/lost.md"]
if found != want or renewed != [line for line in want if "differs" not in line]:
    sys.exit("\n".join([*found, "after renewing:", *renewed]))
