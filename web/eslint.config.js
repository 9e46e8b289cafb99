// The rules for the page's sources and its tests.
import js from "@eslint/js";
import tseslint from "typescript-eslint";

export default tseslint.config(
  { ignores: ["dist", "node_modules"] },
  js.configs.recommended,
  {
    files: ["src/**/*.ts"],
    extends: [...tseslint.configs.strictTypeChecked],
    languageOptions: {
      parserOptions: { projectService: true, tsconfigRootDir: import.meta.dirname },
    },
    rules: {
      "@typescript-eslint/restrict-template-expressions": ["error", { allowNumber: true }],
      "@typescript-eslint/no-non-null-assertion": "off",
      "@typescript-eslint/no-confusing-void-expression": "off",
      // Elements and structures are of the type that the caller knows.
      "@typescript-eslint/no-unnecessary-type-parameters": "off",
    },
  },
  {
    files: ["**/*.mjs", "*.js", "*.mts"],
    languageOptions: {
      globals: Object.fromEntries(
        [
          "process",
          "Buffer",
          "URL",
          "URLSearchParams",
          "console",
          "WebAssembly",
          "TextDecoder",
          "document",
          "window",
        ]
          .concat([
            "setTimeout",
            "fetch",
            "performance",
            "KeyboardEvent",
            "location",
            "requestAnimationFrame",
          ])
          .map((name) => [name, "readonly"]),
      ),
    },
  },
);
