// The table of an index, from the JSON in the page. Texts go in as texts, never as markup.
const index = JSON.parse(document.getElementById("data").textContent);

function addCell(row, text, columns = 1) {
  const cell = row.appendChild(document.createElement("td"));
  cell.textContent = text;
  cell.colSpan = columns;
  return cell;
}

function addRow(entry) {
  const row = document.getElementById("rows").appendChild(document.createElement("tr"));
  const name = row.appendChild(document.createElement("th"));
  name.scope = "row";
  if (entry.link) {
    const link = name.appendChild(document.createElement("a"));
    link.href = entry.link;
    link.textContent = entry.name;
  } else {
    name.textContent = entry.name;
  }
  if (entry.failure) {
    addCell(row, "Failed: " + entry.failure, index.columns.length).className = "failure";
  } else {
    entry.cells.forEach((text) => addCell(row, text));
  }
}

document.getElementById("version").textContent = index.version;
document.getElementById("subtitle").textContent = index.subtitle;
for (const label of index.columns) {
  const cell = document.getElementById("columns").appendChild(document.createElement("th"));
  cell.scope = "col";
  cell.textContent = label;
}
index.rows.forEach(addRow);
index.totals.forEach((text) => addCell(document.getElementById("totals"), text));
