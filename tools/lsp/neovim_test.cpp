// A real editor: Neovim, set up as docs/editors.md shows it, works on a graph with mistakes.

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "tools/command_test_support.h"

namespace TolmSDK::Graphics::sfg::tools {
namespace {

constexpr const char* kLibrary = R"json({
  "checker": {
    "description": "Squares of 0 and 1.",
    "ports": { "uv": { "value": [0.5, 0.5] }, "result": "which square" },
    "language": ["dx11"],
    "implementation": ["void checker(float2 uv, out float result)", "{", "result = frac(uv.x);", "}"]
  },
  "blend": {
    "language": ["dx11"],
    "implementation": ["void blend(float3 a, float3 b, float amount, out float3 result)",
      "{", "result = lerp(a, b, amount);", "}"]
  }
}
)json";

constexpr const char* kGraph = R"json({
  "inputs": [ { "name": "uv", "type": "float2" } ],
  "outputs": [ { "name": "color", "type": "float3", "node": "board", "output": "result" } ],
  "nodes": [
    { "name": "tiles", "fragment": "chekcer", "inputs": { "uv": { "graphInput": "uv" } } },
    { "name": "board", "fragment": "blend",
      "inputs": { "a": { "value": [0.1, 0.1, 0.1] }, "b": { "value": [0.9, 0.8, 0.6] },
                  "amount": { "node": "tiles", "output": "result" } } }
  ]
}
)json";

/// Behind the set-up: what a person does, and what the editor then shows.
constexpr const char* kWork = R"lua(
local answers = io.open("answers", "w")
local function say(...) answers:write(table.concat({ ... }, " "), "\n") end
local function wait(what, test)
  if not vim.wait(30000, test, 20) then error("nothing came of " .. what) end
end
local function place(text)
  for number, line in ipairs(vim.api.nvim_buf_get_lines(0, 0, -1, false)) do
    local column = line:find(text, 1, true)
    if column then return vim.api.nvim_win_set_cursor(0, { number, column }) end
  end
  error("there is no " .. text)
end
local function ask(method, params)
  for _, answer in pairs(vim.lsp.buf_request_sync(0, method, params, 30000)) do return answer.result end
  error("no answer to " .. method)
end
local function content() return table.concat(vim.api.nvim_buf_get_lines(0, 0, -1, false), "\n") end

local function work()
  local graph = vim.api.nvim_get_current_buf()
  wait("the diagnostic", function() return #vim.diagnostic.get(graph) > 0 end)
  for _, one in ipairs(vim.diagnostic.get(graph)) do
    say("diagnostic", one.lnum + 1 .. ":" .. one.col + 1, one.message, one.user_data.lsp.code)
  end

  place("chekcer")
  vim.ui.select = function(items, _, choose) choose(items[1], 1) end
  vim.lsp.buf.code_action()
  wait("the code action", function() return content():find('"checker"', 1, true) ~= nil end)
  wait("the end of the diagnostic", function() return #vim.diagnostic.get(graph) == 0 end)
  say("mended")

  place("checker")
  say("hover", ask("textDocument/hover", vim.lsp.util.make_position_params()).contents.value:match("\n\n(.-)\n"))
  local labels = {}
  for _, item in ipairs(ask("textDocument/completion", vim.lsp.util.make_position_params())) do
    table.insert(labels, item.label .. item.detail)
  end
  say("completion", table.concat(labels, " "))

  place("tiles")
  vim.lsp.buf.rename("squares")
  wait("the new name", function() return content():find('"node": "squares"', 1, true) ~= nil end)
  vim.cmd("write")

  place("blend")
  vim.lsp.buf.definition()
  wait("the definition", function() return vim.api.nvim_get_current_buf() ~= graph end)
  say("definition", vim.fn.expand("%:t"), vim.fn.line("."), vim.fn.expand("<cword>"), vim.bo.filetype)
end

vim.defer_fn(function()
  local done, why = pcall(work)
  say(done and "done" or why)
  answers:close()
  vim.cmd("qall!")
end, 10)
)lua";

class NeovimTest : public CommandTest {
protected:
  void SetUp() override {
    if (std::system("nvim --version >/dev/null 2>&1") != 0)
      GTEST_SKIP() << "the package neovim is not installed";
  }

  /// The block of the document that is Lua.
  static std::string documented() {
    std::ifstream file(repository("docs/editors.md"));
    const std::string text(std::istreambuf_iterator<char>(file), {});
    const std::size_t begin = text.find("```lua\n");
    const std::size_t end = text.find("```", begin + 1);
    if (begin == text.npos || end == text.npos) return "error('docs/editors.md has no Lua block')";
    return text.substr(begin + 7, end - begin - 7);
  }
};

TEST_F(NeovimTest, WorksOnAGraph) {
  write("fragments/first.fraglib", kLibrary);
  write("graph.json", kGraph);
  write("init.lua", documented());
  write("work.lua", kWork);
  std::filesystem::create_directory(path("home"));
  const std::string program = std::filesystem::path(SFG_COMMAND).parent_path().string();
  const std::string command =
      "cd '" + path(".") + "' && HOME='" + path("home") +
      "' XDG_CONFIG_HOME= XDG_DATA_HOME= " + "XDG_STATE_HOME= XDG_CACHE_HOME= PATH='" + program +
      "':\"$PATH\" timeout 100 nvim --headless -i NONE -n -u init.lua " +
      "graph.json -c 'luafile work.lua' >out 2>&1";
  EXPECT_EQ(std::system(command.c_str()), 0) << read("out");
  EXPECT_EQ(read("answers"),
            "diagnostic 5:36 node `tiles` uses the fragment `chekcer`, which no library has; "
            "did you mean `checker`? unknown-fragment\n"
            "mended\n"
            "hover Squares of 0 and 1.\n"
            "completion blend(float3 a, float3 b, float amount) -> float3 result "
            "checker(float2 uv) -> float result\n"
            "definition first.fraglib 8 blend json\n"
            "done\n")
      << read("out");
  std::string expected = kGraph;
  for (const auto& [from, to] : {std::pair<std::string, std::string>("chekcer", "checker"),
                                 {"tiles", "squares"},
                                 {"tiles", "squares"}})
    expected.replace(expected.find(from), from.size(), to);
  EXPECT_EQ(read("graph.json"), expected);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools
