#include "tools/site/looks.h"

namespace TolmSDK::Graphics::sfg::site {

const char* const kStyle = R"css(:root {
  color-scheme: light dark;
  --ground: #ffffff; --panel: #f4f5f7; --line: #c9ced6; --text: #1b1f24; --quiet: #545d68; --link: #0b57b0;
  --comment: #566069; --keyword: #8a1a8f; --type: #0b5d8a; --number: #93470b; --string: #1d6b2f; --ours: #0b57b0;
}
@media (prefers-color-scheme: dark) {
  :root {
    --ground: #15181c; --panel: #1f242a; --line: #444c56; --text: #e6e9ec; --quiet: #a9b2bc; --link: #8ec2ff;
    --comment: #a3adb8; --keyword: #e3a6ea; --type: #86cdf2; --number: #f0b27c; --string: #93d6a1; --ours: #8ec2ff;
  }
}
* { box-sizing: border-box; }
body { margin: 0; background: var(--ground); color: var(--text); font: 16px/1.5 system-ui, sans-serif; }
a { color: var(--link); }
:focus-visible { outline: 3px solid var(--link); outline-offset: 2px; }
.skip { position: absolute; left: -999em; }
.skip:focus { left: 0.5em; top: 0.5em; background: var(--ground); padding: 0.5em; z-index: 1; }
header { display: flex; flex-wrap: wrap; gap: 1em 2em; align-items: center; justify-content: space-between;
  padding: 0.75em 1.5em; background: var(--panel); border-bottom: 1px solid var(--line); }
nav ul { display: flex; flex-wrap: wrap; gap: 1.5em; list-style: none; margin: 0; padding: 0; }
form { display: flex; gap: 0.5em; align-items: center; }
input, button { font: inherit; color: inherit; background: var(--ground); border: 1px solid var(--quiet);
  border-radius: 4px; padding: 0.25em 0.5em; }
main { max-width: 70em; margin: 0 auto; padding: 0.5em 1.5em 4em; }
main:focus { outline: none; }
.lead { font-size: 1.15em; }
.place, figcaption, small { color: var(--quiet); }
.fragments { list-style: none; padding: 0; }
.fragments li { display: flex; gap: 1em; align-items: center; padding: 0.25em 0; border-bottom: 1px solid var(--line); }
.fragments li[hidden] { display: none; }
.fragments img { width: 56px; height: 56px; object-fit: contain; flex: none; }
.fragments a { font-weight: 600; }
.names { columns: 14em; }
.pictures { display: flex; flex-wrap: wrap; gap: 1em; }
figure { margin: 0; text-align: center; }
figure img { display: block; margin: 0 auto; max-width: 100%; }
.cards { display: grid; grid-template-columns: repeat(auto-fill, minmax(18em, 1fr)); gap: 1em; }
article { border: 1px solid var(--line); border-radius: 6px; padding: 0 1em 1em; min-width: 0; }
.wide { overflow-x: auto; }
table { border-collapse: collapse; width: 100%; }
th, td { text-align: left; vertical-align: top; padding: 0.35em 0.75em 0.35em 0; border-bottom: 1px solid var(--line); }
tbody th { font-weight: 400; }
pre { background: var(--panel); border: 1px solid var(--line); border-radius: 6px; padding: 0.75em; overflow: auto;
  max-height: 40em; }
code { font: 0.9em/1.5 ui-monospace, monospace; }
.comment { color: var(--comment); font-style: italic; }
.keyword, .directive { color: var(--keyword); }
.type { color: var(--type); }
.number { color: var(--number); }
.string { color: var(--string); }
.ours { color: var(--ours); }
)css";

// Pages of a file system may not fetch other files, so what is searched is in the page itself.
const char* const kSearch = R"js("use strict";
(() => {
  const field = document.getElementById("q");
  const status = document.getElementById("status");
  const rows = Array.from(document.querySelectorAll("[data-words]"));
  if (!status) return;
  const find = () => {
    const words = field.value.toLowerCase().split(/\s+/).filter(Boolean);
    let shown = 0;
    for (const row of rows) {
      row.hidden = !words.every((word) => row.dataset.words.includes(word));
      if (!row.hidden) shown += 1;
    }
    for (const topic of document.querySelectorAll(".topic")) {
      topic.hidden = !topic.querySelector("[data-words]:not([hidden])");
    }
    status.textContent = words.length === 0 ? `${rows.length} fragments`
      : `${shown} of ${rows.length} fragments for "${field.value.trim()}"`;
  };
  field.value = new URLSearchParams(location.search).get("q") || "";
  field.addEventListener("input", find);
  field.form.addEventListener("submit", (event) => {
    event.preventDefault();
    find();
  });
  find();
})();
)js";

}  // namespace TolmSDK::Graphics::sfg::site
