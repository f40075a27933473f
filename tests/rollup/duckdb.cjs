// Runs scripts in DuckDB and prints the rows of the last statement: "one|two", a null as "-".
// Usage: node duckdb.cjs SCRIPT.sql... STATEMENT
const fs = require('fs');
const { DuckDBInstance } = require('@duckdb/node-api');

function word(value) {
    return value === null ? '-' : String(value);
}

async function main() {
    const [statement, ...scripts] = process.argv.slice(2).reverse();
    const instance = await DuckDBInstance.create(':memory:');
    const connection = await instance.connect();
    for (const script of scripts.reverse()) {
        const extracted = await connection.extractStatements(fs.readFileSync(script, 'utf8'));
        for (let at = 0; at < extracted.count; ++at) {
            await (await extracted.prepare(at)).run();
        }
    }
    const reader = await connection.runAndReadAll(statement);
    for (const row of reader.getRows()) {
        console.log(row.map(word).join('|'));
    }
}

main().catch((error) => {
    console.error(error.message);
    process.exit(1);
});
